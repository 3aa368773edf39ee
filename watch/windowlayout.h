#pragma once
// An arrangement of watch windows and their charts that a user keeps in a file and opens again
// the next morning, so that nobody drags every variable once more.

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

class QWidget;

/// Where a window stands: its geometry on the screen, frame not included. A width of 0 leaves
/// the window where it opens.
struct WindowGeometry {
    int x = 0, y = 0, width = 0, height = 0;
    bool operator==(const WindowGeometry& other) const;
};

/// The window's geometry, and the window put back there (a width of 0 leaves it).
WindowGeometry GeometryOf(const QWidget& window);
void PlaceWindow(QWidget& window, const WindowGeometry& geometry);

/// One variable of a chart ("host:DATA:CH4") and its axis.
struct ChartVariable {
    std::string text;
    bool right = false;
    bool operator==(const ChartVariable& other) const;
};

/// A strip chart: its title, the width of its time axis in seconds, and its variables in order.
struct ChartLayout {
    std::string title;
    double width = 60;
    WindowGeometry geometry;
    std::vector<ChartVariable> variables;
    bool operator==(const ChartLayout& other) const;
};

/// A watch window: the instrument's name and type word ("tolvan"), the address it was dialled
/// on ("127.0.0.1", "fe80::1%4"; empty when it was not connected) and port, and the charts it
/// opened. A chart may hold variables of other instruments of the layout.
struct WatchLayout {
    std::string name, model, address;
    int port = 0;
    WindowGeometry geometry;
    std::vector<ChartLayout> charts;
    bool operator==(const WatchLayout& other) const;
};

/// The watch windows in the order they were opened, as a JSON document:
///
///     {"windows": [{"name": "tower-ch4", "model": "tolvan", "address": "127.0.0.1", "port": 4410,
///                   "geometry": {"x": 10, "y": 40, "width": 750, "height": 800},
///                   "charts": [{"title": "Tolvan Data", "width": 60, "geometry": {...},
///                               "variables": [{"variable": "tower-ch4:DATA:CH4", "axis": "left"}]}]}]}
///
/// A window needs "name" and "model"; what else is missing takes its default (no address, port
/// 0, the place where it opens, a width of 60 s, the left axis). Unknown keys are passed over.
struct WindowLayout {
    /// A text that is no JSON, or no layout; what() says where and what.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    std::vector<WatchLayout> windows;

    /// Throws Error and gives nothing for a text that does not read whole.
    static WindowLayout Read(const std::string& text);
    std::string Write() const;
    bool operator==(const WindowLayout& other) const;
};

/// A connector's target as it tells it ("fe80::1%4:4410") split into the address ("fe80::1%4")
/// and the port; an empty or portless text gives an empty address and port 0.
std::pair<std::string, int> SplitTarget(const std::string& connected_to);
/// An address with its IPv6 scope ("fe80::1%4") split into the address and the scope; 0 when it
/// has none.
std::pair<std::string, int> SplitScope(const std::string& address);
