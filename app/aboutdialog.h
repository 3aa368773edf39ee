#pragma once
// The About box: the licence text that ships beside the program, shown as HTML.

#include <QDialog>

#include <string>

/// Where the About box looks for its text: the program path with its extension replaced by
/// ".license". The extension starts at the path's last "."; a path without one, or whose only
/// "." is its first character, keeps its whole text.
std::string AboutTextPath(const std::string& program_path);

/// A modal box, "About this application...", showing the whole file at `about_text_path` as HTML,
/// or one line of its own when that file cannot be opened.
class AboutDialog : public QDialog {
    Q_OBJECT
public:
    AboutDialog(QWidget* parent, const std::string& about_text_path);
};
