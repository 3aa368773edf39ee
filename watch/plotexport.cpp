#include "watch/plotexport.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QDir>
#include <QFormLayout>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPdfWriter>
#include <QSpinBox>
#include <QSvgGenerator>

#include <qwt_plot.h>
#include <qwt_plot_renderer.h>

namespace {

// At 96 pixels to the inch a vector file measures what the screen shows.
constexpr int kVectorResolution = 96;

// Where the last file went, so that a series of exports lands together.
QString& last_directory()
{
    static QString directory;
    return directory;
}

// The file the user picks, with the filter's suffix added when none was typed; empty when cancelled.
QString ask_save_path(QWidget* parent, const QString& caption, const QString& filters)
{
    QString filter;
    QString path = QFileDialog::getSaveFileName(parent, caption, last_directory(), filters, &filter);
    if (path.isEmpty())
        return path;
    // "PNG image (*.png)" gives ".png".
    const int star = filter.indexOf("*.");
    if (QFileInfo(path).suffix().isEmpty() && star >= 0)
        path += filter.mid(star + 1, filter.indexOf(')', star) - star - 1);
    last_directory() = QFileInfo(path).absolutePath();
    return path;
}

bool ask_size(QWidget* parent, QSize& size)
{
    QDialog dialog(parent);
    dialog.setWindowTitle("Image Size");
    auto* width = new QSpinBox(&dialog);
    auto* height = new QSpinBox(&dialog);
    for (QSpinBox* box : {width, height}) {
        box->setRange(16, 20000);
        box->setSuffix(" px");
    }
    width->setValue(size.width());
    height->setValue(size.height());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* form = new QFormLayout(&dialog);
    form->addRow("Width:", width);
    form->addRow("Height:", height);
    form->addRow(buttons);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    size = QSize(width->value(), height->value());
    return true;
}

bool render(QwtPlot* plot, QPaintDevice& device, const QSize& size)
{
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    QwtPlotRenderer().render(plot, &painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return painter.end();
}

void show_write_error(QWidget* parent, const QString& caption, const QString& path)
{
    QMessageBox::warning(parent, caption, "Could not write " + QDir::toNativeSeparators(path) + ".");
}

}  // namespace

void AddPlotMenu(QwtPlot* plot, PlotMenuEntries entries)
{
    plot->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(plot, &QWidget::customContextMenuRequested, plot, [plot, entries](const QPoint& position) {
        QMenu menu(plot);
        for (const auto& [text, action] : entries)
            QObject::connect(menu.addAction(text), &QAction::triggered, action);
        menu.exec(plot->mapToGlobal(position));
    });
}

bool RenderPlotImage(QwtPlot* plot, const QString& path, const QSize& size)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == "svg") {
        QSvgGenerator svg;
        svg.setFileName(path);
        svg.setSize(size);
        svg.setViewBox(QRect(QPoint(0, 0), size));
        svg.setResolution(kVectorResolution);
        svg.setTitle(plot->title().text());
        return render(plot, svg, size);
    }
    if (suffix == "pdf") {
        QPdfWriter pdf(path);
        pdf.setResolution(kVectorResolution);
        pdf.setPageSize(QPageSize(QSizeF(size) * 72.0 / kVectorResolution, QPageSize::Point, QString(),
                                  QPageSize::ExactMatch));
        pdf.setPageMargins(QMarginsF());
        pdf.setTitle(plot->title().text());
        return render(plot, pdf, size);
    }
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    return render(plot, image, size) && image.save(path);
}

void SavePlotImage(QwtPlot* plot, QWidget* parent)
{
    const QString caption = "Save Image";
    const QString path =
        ask_save_path(parent, caption, "PNG image (*.png);;SVG drawing (*.svg);;PDF document (*.pdf)");
    QSize size = plot->size();
    if (path.isEmpty() || !ask_size(parent, size))
        return;
    if (!RenderPlotImage(plot, path, size))
        show_write_error(parent, caption, path);
}

void SaveCsvFile(QWidget* parent, const QString& caption, const std::string& text)
{
    SaveTextFile(parent, caption, "CSV file (*.csv)", text);
}

void SaveTextFile(QWidget* parent, const QString& caption, const QString& filters, const std::string& text)
{
    const QString path = ask_save_path(parent, caption, filters);
    if (path.isEmpty())
        return;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(text.data(), qint64(text.size())) != qint64(text.size()) || !file.flush())
        show_write_error(parent, caption, path);
}
