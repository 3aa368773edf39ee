#include "app/myframe.h"

#include <QCoreApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>

#include "app/datafiles.h"
#include "app/externaldialog.h"
#include "foundation/str_util.h"
#include "link/connector.h"
#include "watch/configmorvikdialog.h"
#include "watch/plotdialog.h"
#include "watch/watchbremmeldialog.h"
#include "watch/watchdravikdialog.h"
#include "watch/watchhaldendialog.h"
#include "watch/watchquentadialog.h"
#include "watch/watchtolvandialog.h"

namespace {

using Window = MyFrame::InstrumentWindow;

// The description file's keywords for the window buttons.
struct KeywordButton {
    const char* caption;
    const char* text;
    void (MyFrame::*slot)();
};

const KeywordButton kKeywordButtons[] = {
    {"watch-tolvan", "Watch Tolvan", &MyFrame::OnWatchTolvanButtonClicked},
    {"watch-quenta", "Watch Quenta", &MyFrame::OnWatchQuentaButtonClicked},
    {"watch-dravik", "Watch Dravik", &MyFrame::OnWatchDravikButtonClicked},
    {"watch-halden", "Watch Halden", &MyFrame::OnWatchHaldenButtonClicked},
    {"config-morvik", "Config Pelsen", &MyFrame::OnConfigMorvikButtonClicked},
};

// A button with no commands of its own; the panel leaves it without action.
const char* const kCpldCaption = "cpld";
const char* const kCpldText = "CPLD Control Panel...";

const char* const kTypeWords[] = {"tolvan", "morvik", "sarnel", "quenta", "dravik", "halden", "bremmel", "other"};

const int kOtherPort = 4410;

const KeywordButton* keyword_by_caption(const std::string& caption)
{
    for (const KeywordButton& keyword : kKeywordButtons)
        if (caption == keyword.caption)
            return &keyword;
    return nullptr;
}

const KeywordButton* keyword_by_text(const QString& text)
{
    for (const KeywordButton& keyword : kKeywordButtons)
        if (text == keyword.text)
            return &keyword;
    return nullptr;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

std::string txt_value(const InstInfo& info, const std::string& key)
{
    const auto found = info.txt.find(key);
    return found == info.txt.end() ? std::string() : found->second;
}

std::string info_html(const InstInfo& info)
{
    std::string html = "<table>";
    html += "<tr><td><strong>NAME: </strong>" + info.name + "</td></tr>";
    html += "<tr><td><strong>HOST: </strong>" + info.host + "</td></tr>";
    for (const SocketAddress& address : info.addresses) {
        html += "<tr><td><strong>IP: </strong>" + address.Presentation();
        if (address.Family() == Socket::IPv6 && address.IsLinkLocal())
            html += "%" + std::to_string(address.Scope());
        html += ":" + std::to_string(address.Port()) + "</td></tr>";
    }
    for (const auto& pair : info.txt)
        html += "<tr><td><strong>" + pair.first + ": </strong>" + pair.second + "</td></tr>";
    html += "</table>";
    return html;
}

}  // namespace

// --- MyPushButton ---

MyPushButton::MyPushButton(const QString& text, unsigned index, const std::string& service, QWidget* parent)
    : QPushButton(text, parent), _index(index), _service(service)
{
    connect(this, &QAbstractButton::clicked, this, &MyPushButton::OnClicked);
}

void MyPushButton::OnClicked(bool /*checked*/)
{
    emit clicked(_index);
}

// --- MyFrame ---

bool MyFrame::WindowRequest::operator==(const WindowRequest& other) const
{
    return window == other.window && name == other.name && type == other.type && address == other.address &&
           scope == other.scope && port == other.port && from_list == other.from_list;
}

MyFrame::MyFrame(QWidget* parent, const std::string& /*title*/, const std::string& program_path,
                 const std::vector<NamedInstrument>& instruments)
    : QWidget(parent), _client(this)
{
    setAttribute(Qt::WA_DeleteOnClose);

    const std::string description_path = DescriptionFilePath();
    std::string::size_type slash = program_path.rfind('\\');
    if (slash == std::string::npos)
        slash = program_path.rfind('/');
    _program_dir = slash == std::string::npos ? program_path : program_path.substr(0, slash + 1);
    // An installed program's helpers lie with its description file, not beside the program.
    if (description_path.rfind(InstalledDataDir(), 0) == 0)
        _program_dir = InstalledDataDir();

    std::ifstream description(description_path);
    if (description)
        _doc.configure(description, std::cout);

    _tree = new QTreeWidget(this);
    _tree->setMinimumSize(450, 200);
    _tree->setRootIsDecorated(false);
    _tree->setColumnCount(4);
    const bool update = CaseInsensitiveStringFind(program_path, "update", 0) != std::string::npos;
    _tree->setHeaderLabels({"Name", "Model", "Version", update ? " " : "Log File"});
    connect(_tree, &QTreeWidget::itemSelectionChanged, this, &MyFrame::OnSelectionChanged);
    connect(_tree, &QTreeWidget::itemDoubleClicked, this, &MyFrame::OnItemDoubleClicked);

    // Ten empty lines keep room for the information from the start.
    _info = new QLabel(QString(10, '\n'), this);

    std::vector<ButtonMarkup> markups;
    GetButtonList(markups);
    for (unsigned index = 0; index < markups.size(); ++index) {
        const ButtonMarkup& markup = markups[index];
        MyPushButton* button;
        if (const KeywordButton* keyword = keyword_by_caption(markup.caption)) {
            button = new MyPushButton(keyword->text, index, "", this);
            connect(button, &QAbstractButton::clicked, this, keyword->slot);
        } else if (markup.caption == kCpldCaption) {
            button = new MyPushButton(kCpldText, index, "", this);
        } else {
            button = new MyPushButton(QString::fromStdString(markup.caption + "..."), index, markup.service, this);
            connect(button, QOverload<unsigned>::of(&MyPushButton::clicked), this, &MyFrame::OnButtonClicked);
            if (!markup.service.empty())
                button->hide();
        }
        button->setEnabled(false);
        _buttons.push_back(button);
    }

    auto* info_column = new QVBoxLayout;
    info_column->addWidget(_info);
    info_column->addStretch();
    auto* button_column = new QVBoxLayout;
    for (MyPushButton* button : _buttons)
        button_column->addWidget(button);
    button_column->addStretch();
    auto* middle = new QHBoxLayout;
    middle->addLayout(info_column, 1);
    middle->addLayout(button_column);

    auto* close = new QPushButton("Close", this);
    if (parent)
        connect(close, &QPushButton::clicked, parent, &QWidget::close);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_tree, 1);
    layout->addLayout(middle, 1);
    layout->addLayout(bottom);

    if (parent)
        parent->setWindowTitle(QString::fromStdString(_doc.Title()));

    Browse();
    AddOtherHost();

    std::vector<NamedInstrument> named;
    std::vector<std::string> errors;
    _doc.GetInstruments(named, errors);
    for (const std::string& error : errors)
        std::cerr << "sondar: " << DescriptionFilePath() << ": skipping <instrument> " << error << std::endl;
    named.insert(named.end(), instruments.begin(), instruments.end());
    for (const NamedInstrument& instrument : named)
        AddNamedInstrument(instrument);
}

std::string MyFrame::DescriptionFilePath()
{
    return BesideOrInstalled((QCoreApplication::applicationDirPath() + QDir::separator() +
                              QCoreApplication::applicationName() + ".xml")
                                 .toStdString());
}

MyFrame::OtherTarget MyFrame::ParseOtherTarget(const std::string& text)
{
    OtherTarget target{text, kOtherPort, Window::WatchTolvan, "tolvan"};
    const std::string::size_type colon = text.find(':');
    if (colon != std::string::npos) {
        target.address = text.substr(0, colon);
        bool ok = false;
        const int port = QString::fromStdString(text.substr(colon + 1)).toInt(&ok);
        if (ok && port >= 1 && port <= 65535)
            target.port = port;
    }
    static const struct {
        int port;
        Window window;
        const char* type;
    } by_port[] = {
        {50111, Window::WatchBremmel, "bremmel"}, {4430, Window::WatchHalden, "halden"},
        {4440, Window::WatchDravik, "dravik"},    {4450, Window::WatchQuenta, "quenta"},
        {4420, Window::ConfigMorvik, "morvik"},
    };
    for (const auto& row : by_port)
        if (target.port == row.port) {
            target.window = row.window;
            target.type = row.type;
        }
    return target;
}

void MyFrame::AddService(std::string name, std::string type, std::string /*domain*/, unsigned /*interface_index*/,
                         std::string host, const SocketAddress& address,
                         const std::map<std::string, std::string>& txt)
{
    const auto known = std::find_if(_instruments.begin(), _instruments.end(),
                                    [&](const InstInfo& info) { return info.name == name; });
    if (known != _instruments.end()) {
        // Only the address is news: the rest stays as first announced.
        known->addresses.insert(address);
        InfoChanged();
        return;
    }
    std::string word = "unknown";
    for (const char* candidate : kTypeWords)
        if (contains(type, candidate)) {
            word = candidate;
            break;
        }
    _instruments.push_back(InstInfo{name, {address}, host, word, txt});
    std::stable_sort(_instruments.begin(), _instruments.end());
    InfoChanged();
}

void MyFrame::RemoveService(std::string name, std::string /*type*/, std::string /*domain*/)
{
    const auto found = std::find_if(_instruments.begin(), _instruments.end(),
                                    [&](const InstInfo& info) { return info.name == name; });
    if (found != _instruments.end())
        _instruments.erase(found);
    InfoChanged();
}

bool MyFrame::ServiceError(std::string message)
{
    std::cout << "ERROR: " << message << std::endl;
    return false;
}

void MyFrame::Browse()
{
    std::vector<std::string> services;
    _doc.GetServices(services);
    for (const std::string& service : services)
        _client.Browse(service);
}

void MyFrame::AddOtherHost()
{
    SocketAddress address(std::string("127.0.0.1"));
    address.Port(kOtherPort);
    AddService("Other...", "_arvex-other._tcp", "local.", 1, "other.local.", address,
               {{"company", "Arvex"}, {"model", ""}, {"ver", ""}});
}

void MyFrame::AddNamedInstrument(const NamedInstrument& instrument)
{
    AddService(instrument.name, instrument.ServiceType(), "local.", 0, instrument.address.Presentation(),
               instrument.address, instrument.Txt());
}

void MyFrame::GetButtonList(std::vector<ButtonMarkup>& buttons) const
{
    Defines defines;
    _doc.GetDefines(defines);
    defines.ApplyDefines();
    std::vector<std::shared_ptr<ButtonConfig>> configs;
    _doc.GetButtons(configs);
    for (const auto& config : configs) {
        config->ApplyDefines(defines);
        buttons.push_back({config->caption, config->service});
    }
}

void MyFrame::InfoChanged()
{
    _tree->clear();
    for (const InstInfo& info : _instruments) {
        std::string model = txt_value(info, "model");
        if (model == "Pelsen") {
            if (contains(info.type, "morvik"))
                model += " (Tolvan)";
            else if (contains(info.type, "sarnel"))
                model += " (Yarvel/Zelmin)";
        }
        std::string log_file;
        const auto connector = Connector::LookupConnector(info.name);
        if (connector && connector->IsLogging())
            log_file = connector->LogFileName();
        _tree->addTopLevelItem(new QTreeWidgetItem(
            QStringList{QString::fromStdString(info.name), QString::fromStdString(model),
                        QString::fromStdString(txt_value(info, "ver")), QString::fromStdString(log_file)}));
    }
    for (int column = 0; column < 4; ++column)
        _tree->resizeColumnToContents(column);
    // Clearing the tree drops the selection without a word from it.
    OnSelectionChanged();
}

const InstInfo* MyFrame::_GetSelectedInstInfo() const
{
    const QList<QTreeWidgetItem*> selected = _tree->selectedItems();
    if (selected.isEmpty())
        return nullptr;
    const std::string name = selected.first()->text(0).toStdString();
    for (const InstInfo& info : _instruments)
        if (info.name == name)
            return &info;
    return nullptr;
}

void MyFrame::OnRefresh()
{
    InfoChanged();
}

void MyFrame::OnSelectionChanged()
{
    const InstInfo* info = _GetSelectedInstInfo();
    for (MyPushButton* button : _buttons) {
        if (!info) {
            button->setEnabled(false);
            if (!button->Service().empty())
                button->hide();
            continue;
        }
        if (const KeywordButton* keyword = keyword_by_text(button->text())) {
            // The label after the first word must be in the model the instrument announces.
            const std::string text = keyword->text;
            const std::string label = text.substr(text.find(' ') + 1);
            if (!contains(txt_value(*info, "model"), label)) {
                button->setEnabled(false);
                continue;
            }
        }
        if (button->Service().empty()) {
            button->setEnabled(true);
        } else {
            const bool applies = contains(button->Service(), info->type);
            button->setEnabled(applies);
            button->setVisible(applies);
        }
    }

    if (!info) {
        _info->clear();
        return;
    }
    try {
        _info->setText(QString::fromStdString(info_html(*info)));
    } catch (const std::exception&) {
        _info->setText("<strong>== ERROR ==</strong>");
    }
}

void MyFrame::OnItemDoubleClicked(QTreeWidgetItem* /*item*/, int /*column*/)
{
    const InstInfo* info = _GetSelectedInstInfo();
    if (!info)
        return;
    const std::string& type = info->type;
    if (contains(type, "tolvan"))
        OnWatchTolvanButtonClicked();
    else if (contains(type, "morvik") || contains(type, "sarnel"))
        OnConfigMorvikButtonClicked();
    else if (contains(type, "quenta"))
        OnWatchQuentaButtonClicked();
    else if (contains(type, "dravik"))
        OnWatchDravikButtonClicked();
    else if (contains(type, "halden"))
        OnWatchHaldenButtonClicked();
    else if (contains(type, "bremmel"))
        OnWatchBremmelButtonClicked();
    else if (contains(type, "other"))
        OnOtherButtonClicked();
}

void MyFrame::OnAddTestHost()
{
    SocketAddress address(std::string("127.0.0.1"));
    address.Port(4420);
    AddService("ch4-testhost", "_arvex-tolvan._tcp", "local.", 1, "ch4-testhost.local.", address,
               {{"company", "Arvex"}, {"model", "Arvex-TestHost"}, {"ver", "0.0.1"}});
}

void MyFrame::OnRemoveTestHost()
{
    RemoveService("ch4-testhost", "_arvex-tolvan._tcp", "local.");
}

void MyFrame::OnWatchTolvanButtonClicked()
{
    _OpenSelected(Window::WatchTolvan);
}

void MyFrame::OnWatchQuentaButtonClicked()
{
    _OpenSelected(Window::WatchQuenta);
}

void MyFrame::OnWatchDravikButtonClicked()
{
    _OpenSelected(Window::WatchDravik);
}

void MyFrame::OnWatchHaldenButtonClicked()
{
    _OpenSelected(Window::WatchHalden);
}

void MyFrame::OnWatchBremmelButtonClicked()
{
    _OpenSelected(Window::WatchBremmel);
}

void MyFrame::OnConfigMorvikButtonClicked()
{
    _OpenSelected(Window::ConfigMorvik);
}

void MyFrame::_OpenSelected(InstrumentWindow window)
{
    const InstInfo* info = _GetSelectedInstInfo();
    if (!info)
        return;
    int scope, port;
    const std::string address = info->SelectIPAddress(_UseIPV6(), &scope, &port);
    OpenInstrumentWindow({window, info->name, info->type, address, scope, port, true});
}

void MyFrame::OnOtherButtonClicked()
{
    bool ok = false;
    // Whatever comes back is remembered, so cancelling forgets the last address.
    _last_address = QInputDialog::getText(this, "Connect To Other Instrument", "Address:", QLineEdit::Normal,
                                          _last_address, &ok);
    if (!ok || _last_address.isEmpty())
        return;
    const OtherTarget target = ParseOtherTarget(_last_address.toStdString());
    OpenInstrumentWindow({target.window, target.address, target.type, target.address, 0, target.port, false});
}

void MyFrame::OnButtonClicked(unsigned index)
{
    if (const InstInfo* info = _GetSelectedInstInfo())
        ExecuteExternalCommand(index, *info);
}

void MyFrame::ExecuteExternalCommand(unsigned index, const InstInfo& info)
{
    Defines defines;
    _doc.GetDefines(defines);
    defines.Add("ip", info.SelectIPv6LL());
    defines.Add("ipv4", info.SelectIPAddress(false));
    defines.Add("name", info.name);
    defines.Add("host", info.host);
    for (const auto& pair : info.txt)
        defines.Add(pair.first, pair.second);
    defines.Add("program_dir", _program_dir);
    defines.ApplyDefines();

    std::vector<std::shared_ptr<ButtonConfig>> buttons;
    _doc.GetButtons(buttons);
    if (index >= buttons.size() || buttons[index]->cmds.empty())
        return;
    ButtonConfig& button = *buttons[index];
    button.ApplyDefines(defines);
    auto* dialog = new ExternalDialog(this, button, defines);
    dialog->show();
    dialog->RunCmds();
}

QDialog* MyFrame::OpenInstrumentWindow(const WindowRequest& request)
{
    if (request.window == Window::ConfigMorvik) {
        auto* window = new ConfigMorvikDialog(this, request.name, request.type);
        window->show();
        window->Connect(request.address, request.scope, request.port);
        return window;
    }
    WatchDialog* window = nullptr;
    switch (request.window) {
    case Window::WatchQuenta:
        window = new WatchQuentaDialog(this, request.name, request.type);
        break;
    case Window::WatchDravik:
        window = new WatchDravikDialog(this, request.name, request.type);
        break;
    case Window::WatchHalden:
        window = new WatchHaldenDialog(this, request.name, request.type);
        break;
    case Window::WatchBremmel:
        window = new WatchBremmelDialog(this, request.name, request.type);
        break;
    default:
        window = new WatchTolvanDialog(this, request.name, request.type);
        break;
    }
    connect(window, &WatchDialog::LogStatusChanged, this, &MyFrame::OnRefresh);
    window->show();
    // A connector that was on another address leaves it.
    if (request.from_list && !request.address.empty() &&
        !contains(window->GetConnector().ConnectedTo(), request.address))
        window->Disconnect();
    window->Connect(request.address, request.scope, request.port);
    return window;
}

MyFrame::InstrumentWindow MyFrame::WatchWindowFor(const std::string& type)
{
    if (type == "quenta")
        return Window::WatchQuenta;
    if (type == "dravik")
        return Window::WatchDravik;
    if (type == "halden")
        return Window::WatchHalden;
    if (type == "bremmel")
        return Window::WatchBremmel;
    return Window::WatchTolvan;
}

WindowLayout MyFrame::CurrentLayout() const
{
    WindowLayout layout;
    for (const WatchDialog* window : findChildren<WatchDialog*>(QString(), Qt::FindDirectChildrenOnly))
        if (window->isVisible())
            layout.windows.push_back(window->Layout());
    return layout;
}

void MyFrame::OpenLayout(const WindowLayout& layout)
{
    // Every instrument first: a chart may hold variables of any of them.
    std::vector<QDialog*> windows;
    for (const WatchLayout& entry : layout.windows) {
        const auto [address, scope] = SplitScope(entry.address);
        QDialog* window =
            OpenInstrumentWindow({WatchWindowFor(entry.model), entry.name, entry.model, address, scope, entry.port, true});
        if (window)
            PlaceWindow(*window, entry.geometry);
        windows.push_back(window);
    }
    for (size_t i = 0; i < windows.size(); ++i) {
        if (!windows[i])
            continue;
        for (const ChartLayout& chart : layout.windows[i].charts)
            PlotDialog::Open(windows[i], chart);
    }
}
