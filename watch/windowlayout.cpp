#include "watch/windowlayout.h"

#include <QWidget>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>

#include <json/json.h>

namespace {

[[noreturn]] void fail(const std::string& where, const std::string& what)
{
    throw WindowLayout::Error(where + ": " + what);
}

std::string at(const std::string& where, const char* key)
{
    return where.empty() ? key : where + "." + key;
}

std::string at(const std::string& where, Json::ArrayIndex index)
{
    return where + "[" + std::to_string(index) + "]";
}

void require_object(const Json::Value& value, const std::string& where)
{
    if (!value.isObject())
        fail(where.empty() ? "the file" : where, "must be a JSON object");
}

// A missing member is an empty array.
const Json::Value& array_member(const Json::Value& object, const char* key, const std::string& where)
{
    const Json::Value& value = object[key];
    if (!value.isNull() && !value.isArray())
        fail(at(where, key), "must be an array");
    return value;
}

std::string string_member(const Json::Value& object, const char* key, const std::string& where, bool required)
{
    const Json::Value& value = object[key];
    if (value.isNull() && !required)
        return "";
    if (!value.isString() || (required && value.asString().empty()))
        fail(at(where, key), required ? "must be a text that is not empty" : "must be a text");
    return value.asString();
}

int int_member(const Json::Value& object, const char* key, const std::string& where, int low, int high)
{
    const Json::Value& value = object[key];
    if (value.isNull())
        return std::max(low, 0);
    if (!value.isInt() || value.asInt() < low || value.asInt() > high)
        fail(at(where, key), "must be a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return value.asInt();
}

WindowGeometry read_geometry(const Json::Value& object, const std::string& where)
{
    const Json::Value& value = object["geometry"];
    if (value.isNull())
        return {};
    const std::string here = at(where, "geometry");
    require_object(value, here);
    const int big = std::numeric_limits<int>::max(), small = std::numeric_limits<int>::min();
    return {int_member(value, "x", here, small, big), int_member(value, "y", here, small, big),
            int_member(value, "width", here, 0, big), int_member(value, "height", here, 0, big)};
}

ChartVariable read_variable(const Json::Value& value, const std::string& where)
{
    require_object(value, where);
    ChartVariable variable;
    variable.text = string_member(value, "variable", where, true);
    const std::string axis = string_member(value, "axis", where, false);
    if (!axis.empty() && axis != "left" && axis != "right")
        fail(at(where, "axis"), "must be \"left\" or \"right\"");
    variable.right = axis == "right";
    return variable;
}

ChartLayout read_chart(const Json::Value& value, const std::string& where)
{
    require_object(value, where);
    ChartLayout chart;
    chart.title = string_member(value, "title", where, false);
    const Json::Value& width = value["width"];
    if (!width.isNull()) {
        if (!width.isNumeric() || !std::isfinite(width.asDouble()) || width.asDouble() <= 0)
            fail(at(where, "width"), "must be a number of seconds above 0");
        chart.width = width.asDouble();
    }
    chart.geometry = read_geometry(value, where);
    const Json::Value& variables = array_member(value, "variables", where);
    for (Json::ArrayIndex i = 0; i < variables.size(); ++i)
        chart.variables.push_back(read_variable(variables[i], at(at(where, "variables"), i)));
    return chart;
}

WatchLayout read_window(const Json::Value& value, const std::string& where)
{
    require_object(value, where);
    WatchLayout window;
    window.name = string_member(value, "name", where, true);
    window.model = string_member(value, "model", where, true);
    window.address = string_member(value, "address", where, false);
    window.port = int_member(value, "port", where, 0, 65535);
    window.geometry = read_geometry(value, where);
    const Json::Value& charts = array_member(value, "charts", where);
    for (Json::ArrayIndex i = 0; i < charts.size(); ++i)
        window.charts.push_back(read_chart(charts[i], at(at(where, "charts"), i)));
    return window;
}

Json::Value object(std::initializer_list<std::pair<const char*, Json::Value>> members)
{
    Json::Value value(Json::objectValue);
    for (const auto& [key, member] : members)
        value[key] = member;
    return value;
}

template <class Item, class ToJson>
Json::Value array(const std::vector<Item>& items, ToJson to_json)
{
    Json::Value value(Json::arrayValue);
    for (const Item& item : items)
        value.append(to_json(item));
    return value;
}

Json::Value geometry_json(const WindowGeometry& g)
{
    return object({{"x", g.x}, {"y", g.y}, {"width", g.width}, {"height", g.height}});
}

Json::Value chart_json(const ChartLayout& chart)
{
    return object({{"title", chart.title},
                   {"width", chart.width},
                   {"geometry", geometry_json(chart.geometry)},
                   {"variables", array(chart.variables, [](const ChartVariable& variable) {
                        return object({{"variable", variable.text}, {"axis", variable.right ? "right" : "left"}});
                    })}});
}

Json::Value window_json(const WatchLayout& window)
{
    return object({{"name", window.name},
                   {"model", window.model},
                   {"address", window.address},
                   {"port", window.port},
                   {"geometry", geometry_json(window.geometry)},
                   {"charts", array(window.charts, chart_json)}});
}

}  // namespace

WindowGeometry GeometryOf(const QWidget& window)
{
    const QRect place = window.geometry();
    return {place.x(), place.y(), place.width(), place.height()};
}

void PlaceWindow(QWidget& window, const WindowGeometry& geometry)
{
    if (geometry.width > 0)
        window.setGeometry(geometry.x, geometry.y, geometry.width, geometry.height);
}

bool WindowGeometry::operator==(const WindowGeometry& o) const
{
    return x == o.x && y == o.y && width == o.width && height == o.height;
}

bool ChartVariable::operator==(const ChartVariable& o) const
{
    return text == o.text && right == o.right;
}

bool ChartLayout::operator==(const ChartLayout& o) const
{
    return title == o.title && width == o.width && geometry == o.geometry && variables == o.variables;
}

bool WatchLayout::operator==(const WatchLayout& o) const
{
    return name == o.name && model == o.model && address == o.address && port == o.port && geometry == o.geometry &&
           charts == o.charts;
}

bool WindowLayout::operator==(const WindowLayout& o) const
{
    return windows == o.windows;
}

WindowLayout WindowLayout::Read(const std::string& text)
{
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    if (!reader->parse(text.data(), text.data() + text.size(), &root, &errors))
        throw Error("not JSON: " + errors.substr(0, errors.find_last_not_of('\n') + 1));
    require_object(root, "");
    WindowLayout layout;
    const Json::Value& windows = array_member(root, "windows", "");
    if (windows.isNull())
        fail("windows", "missing: the file holds no layout");
    for (Json::ArrayIndex i = 0; i < windows.size(); ++i)
        layout.windows.push_back(read_window(windows[i], at("windows", i)));
    return layout;
}

std::string WindowLayout::Write() const
{
    const Json::Value root = object({{"windows", array(windows, window_json)}});
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    return Json::writeString(builder, root) + "\n";
}

std::pair<std::string, int> SplitTarget(const std::string& connected_to)
{
    const size_t colon = connected_to.rfind(':');
    if (colon == std::string::npos)
        return {"", 0};
    try {
        return {connected_to.substr(0, colon), std::stoi(connected_to.substr(colon + 1))};
    } catch (const std::exception&) {
        return {"", 0};
    }
}

std::pair<std::string, int> SplitScope(const std::string& address)
{
    const size_t percent = address.find('%');
    if (percent == std::string::npos)
        return {address, 0};
    try {
        return {address.substr(0, percent), std::stoi(address.substr(percent + 1))};
    } catch (const std::exception&) {
        return {address.substr(0, percent), 0};
    }
}
