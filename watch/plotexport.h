#pragma once
// What the plots offer on their context menu: the plot as an image, and tables of numbers as
// CSV files; and the saving of any text file that the user names.

#include <QString>
#include <QSize>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class QWidget;
class QwtPlot;

/// A context menu on the plot: its entries in order, each with what it does.
using PlotMenuEntries = std::vector<std::pair<QString, std::function<void()>>>;
void AddPlotMenu(QwtPlot* plot, PlotMenuEntries entries);

/// Draws the plot alone (no window around it) through QwtPlotRenderer into `path` at `size`
/// pixels, on white. The suffix picks the format: "svg" and "pdf" are drawn as vectors at 96
/// pixels to the inch, any other as an image ("png"). False when the file cannot be written.
bool RenderPlotImage(QwtPlot* plot, const QString& path, const QSize& size);

/// "Save Image...": asks for a PNG, SVG or PDF file and a size in pixels, the plot's own to start
/// with, then renders. A file that cannot be written gets a message box.
void SavePlotImage(QwtPlot* plot, QWidget* parent);

/// Asks for a file under `caption` among `filters` ("CSV file (*.csv)"; the chosen filter's suffix
/// is added to a name typed without one) and writes `text` into it. A file that cannot be written
/// gets a message box.
void SaveTextFile(QWidget* parent, const QString& caption, const QString& filters, const std::string& text);
/// SaveTextFile for a CSV file.
void SaveCsvFile(QWidget* parent, const QString& caption, const std::string& text);
