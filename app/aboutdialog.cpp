#include "app/aboutdialog.h"

#include <QFile>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

std::string AboutTextPath(const std::string& program_path)
{
    std::string path = program_path;
    const std::string::size_type dot = path.rfind('.');
    if (dot != std::string::npos && dot != 0)
        path.erase(dot);
    return path + ".license";
}

AboutDialog::AboutDialog(QWidget* parent, const std::string& about_text_path) : QDialog(parent)
{
    setWindowTitle("About this application...");
    resize(640, 400);

    auto* text = new QTextEdit(this);
    text->setReadOnly(true);
    QFile file(QString::fromStdString(about_text_path));
    if (file.open(QIODevice::ReadOnly))
        text->setHtml(QString::fromUtf8(file.readAll()));
    else
        text->setHtml("<p><b>Arvex Sondar</b>: the licence text that belongs beside the program was not found.</p>");

    auto* close = new QPushButton("Close", this);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(buttons);

    close->setFocus();
}
