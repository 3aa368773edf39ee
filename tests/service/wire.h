#pragma once
// A dialog joined to a real Connector whose instrument is a loopback server of the test.

#include <gtest/gtest.h>

// Whole modules: the tests reach into many widgets of each window.
#include <QtNetwork>
#include <QtTest>
#include <QtWidgets>

#include <memory>
#include <string>
#include <vector>

#include "link/connector.h"

inline constexpr int WIRE_TIMEOUT_MS = 30000;  // sanitizer builds on a busy machine are slow

/// A stand-in instrument: a loopback server and the connection it takes.
struct FakeInstrument {
    FakeInstrument() { EXPECT_TRUE(server.listen(QHostAddress::LocalHost, 0)); }
    bool Accept()
    {
        return QTest::qWaitFor([&] { return server.hasPendingConnections(); }, WIRE_TIMEOUT_MS) &&
               (socket = server.nextPendingConnection()) != nullptr;
    }

    /// The next line sent that contains `text`; "" if none comes.
    std::string WaitForText(const std::string& text)
    {
        std::string line;
        const auto wanted = [&] { return line.find(text) != std::string::npos; };
        (void)QTest::qWaitFor([&] {
            while (socket->canReadLine())
                if (line = socket->readLine().toStdString(), wanted())
                    return true;
            return false;
        }, WIRE_TIMEOUT_MS);
        return wanted() ? line : "";
    }

    QTcpServer server;
    QTcpSocket* socket = nullptr;
};

struct Wire : FakeInstrument {
    explicit Wire(const std::string& type = "tolvan") : connector(std::make_shared<Connector>(nullptr, "wire-test", type))
    {
        connector->Connect("127.0.0.1", 0, server.serverPort());
        EXPECT_TRUE(Accept());
        EXPECT_TRUE(QTest::qWaitFor([&] { return connector->ConnectedTo() != ""; }, WIRE_TIMEOUT_MS));
        // As after the instrument's first answer: the replica holds no changes.
        connector->Doc()._set_changed(false);
    }

    /// The joints a watch window makes for a tool window.
    template <class Dialog>
    void Join(Dialog* dialog)
    {
        QObject::connect(dialog, &Dialog::SendXMLChanges, connector.get(), &Connector::OnSendXMLChanges);
        QObject::connect(connector.get(), &Connector::GotXMLChanges, dialog, &Dialog::OnXMLChanged);
    }
    template <class Dialog>
    void JoinRaw(Dialog* dialog)
    {
        Join(dialog);
        QObject::connect(dialog, &Dialog::SendRawXML, connector.get(), &Connector::OnSendRawXML);
    }

    /// The instrument says `line`; returns once the document has taken it.
    void Tell(const std::string& line)
    {
        QSignalSpy changed(connector.get(), &Connector::GotXMLChanges);
        socket->write((line + "\n").c_str());
        EXPECT_TRUE(changed.wait(WIRE_TIMEOUT_MS)) << line;
    }

    /// Every byte sent since the last call, held-back changes included: what lies on the socket
    /// ahead of a mark of the test's own.
    std::string Sent()
    {
        connector->OnSendXMLTimerTimeout();
        connector->OnSendRawXML("<mark/>\n");
        std::string bytes, line;
        for (QDeadlineTimer deadline(WIRE_TIMEOUT_MS); !deadline.hasExpired(); socket->waitForReadyRead(5)) {
            QCoreApplication::processEvents();  // the connector's socket writes
            while (socket->canReadLine())
                if ((line = socket->readLine().toStdString()) == "<mark/>\n")
                    return bytes;
                else
                    bytes += line;
        }
        ADD_FAILURE() << "no mark";
        return bytes;
    }

    DocTolvan& Doc() { return connector->Doc_Tolvan(); }

    std::shared_ptr<Connector> connector;
};

/// Presses the button labelled `label` of the message box that the next call opens; an empty `label` dismisses it.
inline void AnswerNextMessageBox(const QString& label)
{
    QTimer::singleShot(0, [label] {  // runs in the box's own event loop
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box) << "no message box";
        for (QAbstractButton* button : box->buttons())
            if (button->text() == label)
                return button->click();
        box->reject();
    });
}

/// The line edits of `parent` in the order they were made, leaving out those inside spin boxes.
inline std::vector<QLineEdit*> Edits(QWidget* parent)
{
    std::vector<QLineEdit*> edits;
    for (QLineEdit* edit : parent->findChildren<QLineEdit*>())
        if (!qobject_cast<QAbstractSpinBox*>(edit->parentWidget()))
            edits.push_back(edit);
    return edits;
}

/// The push button of `window` that reads `text`, or null.
inline QPushButton* find_button(const QWidget& window, const QString& text)
{
    for (QPushButton* button : window.findChildren<QPushButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}

/// Clicks the first button of `parent` labelled `label`.
inline void Click(QWidget* parent, const QString& label)
{
    for (QAbstractButton* button : parent->findChildren<QAbstractButton*>())
        if (button->text() == label)
            return button->click();
    ADD_FAILURE() << "no button " << label.toStdString();
}

/// The group box of `parent` titled `title`.
inline QGroupBox* group(QWidget* parent, const QString& title)
{
    for (QGroupBox* box : parent->findChildren<QGroupBox*>())
        if (box->title() == title)
            return box;
    ADD_FAILURE() << "no group " << title.toStdString();
    return nullptr;
}

inline QStringList label_texts(const QWidget* parent)
{
    QStringList texts;
    for (const QLabel* label : parent->findChildren<QLabel*>())
        texts << label->text();
    return texts;
}

/// The text of a table cell; "" for one not made yet.
inline QString cell(const QTableWidget& table, int row, int column)
{
    return table.item(row, column) ? table.item(row, column)->text() : QString();
}

inline QStringList row(QTreeWidget* tree, int index)
{
    QStringList texts;
    for (int column = 0; column < tree->columnCount(); ++column)
        texts << tree->topLevelItem(index)->text(column);
    return texts;
}
