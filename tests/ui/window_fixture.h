#pragma once

#include "support/machine.h"
#include "support/printers.h"
#include "ui/window/reelcrate_app.h"

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// The real window on stand-in tools, driven as a user drives it. Any warning of the toolkit, such
/// as a binding that fails, fails the test.
namespace reelcrate {

using namespace Qt::StringLiterals;

class WindowTest : public testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    /// Makes the window and waits for the first tool check.
    void open(FirstLinks links = {});

    // What there is in the window.

    QQuickItem* item(const char* objectName) const;
    QQuickItem* withText(const char* text) const;
    QQuickItem* row(int index) const;
    QQuickItem* inRow(int index, const char* objectName) const;
    QString text(const char* objectName) const { return text(item(objectName)); }
    static QString text(const QQuickItem* item) { return item->property("text").toString(); }
    bool isEnabled(const char* objectName) const { return item(objectName)->isEnabled(); }
    bool isShown(const char* objectName) const { return item(objectName)->isVisible(); }
    Controller& controller() const { return app->controller(); }
    const DownloadItem& record(qsizetype index) const {
        return controller().queue().rows().at(index);
    }

    // What assistive technology is told.

    QAccessibleInterface* accessibleRow(int index) const;
    QStringList rowNames() const;

    // What a user does.

    void click(const QQuickItem* item, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void click(const char* objectName) { click(item(objectName)); }
    void clickRow(int index, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    void drop(const QString& text, bool asUrls);

    // What the tests need besides.

    static QString link(const char* kind, const QString& name);
    static QStringList links(const char* kind, int count);
    void addReadRows(const QStringList& links);
    bool waitForEnd() const;
    std::vector<qsizetype> selectedRows() const;
    /// Until the window shows what has happened.
    static void settle() { QTest::qWait(30); }

    Machine machine;
    ControllerSetup setup;
    QString clipboard;
    QStringList opened;  ///< what the desktop was asked to show
    std::unique_ptr<ReelcrateApp> app;

private:
    using Test = std::function<bool(const QQuickItem&)>;
    static QQuickItem* find(QQuickItem* root, const Test& test);
    static Test isNamed(const char* objectName);
};

}  // namespace reelcrate
