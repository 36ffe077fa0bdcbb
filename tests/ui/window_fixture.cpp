#include "window_fixture.h"

#include <QDropEvent>
#include <QMimeData>

#include <vector>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

QStringList& warnings() {
    static QStringList warnings;
    return warnings;
}

void keepWarning(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    // A screen that nobody sees takes no hints; a thumbnail that does not load is no fault.
    const bool isExpected = text.startsWith(u"This plugin does not support"_s) ||
                            text.contains(u"QueueThumbnail.qml"_s);
    if ((type == QtWarningMsg || type == QtCriticalMsg) && !isExpected)
        warnings().append(text);
}

}  // namespace

WindowTest::WindowTest() {
    for (const char* tool : {"yt-dlp", "spotdl"})
        machine.install(QString::fromLatin1(tool));
    machine.linkConverter();
    machine.installSong();
    setup.toolPlaces = machine.places();
    setup.desktopFolder = machine.path(u"Desktop"_s);
    setup.resolutionTiming = {10ms, 10ms, 1ms};
    setup.downloadTiming = {1ms, 1ms, 1ms};
    setup.clipboardText = [this] { return clipboard; };
    setup.openFolder = [this](const QString& path) { opened.append(u"folder "_s + path); };
    setup.showFile = [this](const QString& path) { opened.append(u"file "_s + path); };
    warnings().clear();
    qInstallMessageHandler(keepWarning);
}

WindowTest::~WindowTest() {
    app.reset();
    qInstallMessageHandler(nullptr);
    EXPECT_EQ(warnings().join(u'\n'), QString());
}

void WindowTest::open(FirstLinks links) {
    app = std::make_unique<ReelcrateApp>(machine.supervisor, setup, std::move(links));
    app->controller().setEventName(u"Prom"_s);
    ASSERT_TRUE(app->show());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(app->window()));
    app->window()->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(app->window()));
    ASSERT_TRUE(waitUntil([this] {
        return !controller().tools().toolStates().isEmpty() &&
               !controller().tools().isCheckingTools();
    }));
    settle();
}

QQuickItem* WindowTest::find(QQuickItem* root, const Test& test) {
    if (test(*root))
        return root;
    for (QQuickItem* child : root->childItems()) {
        if (QQuickItem* found = find(child, test))
            return found;
    }
    return nullptr;
}

WindowTest::Test WindowTest::isNamed(const char* objectName) {
    return [name = QString::fromLatin1(objectName)](const QQuickItem& item) {
        return item.objectName() == name;
    };
}

QQuickItem* WindowTest::item(const char* objectName) const {
    QQuickItem* found = find(app->window()->contentItem(), isNamed(objectName));
    EXPECT_TRUE(found) << objectName;
    return found;
}

QQuickItem* WindowTest::withText(const char* text) const {
    const QString sought = QString::fromLatin1(text);
    QQuickItem* found = find(app->window()->contentItem(), [&](const QQuickItem& item) {
        return item.isVisible() && item.property("text") == sought;
    });
    EXPECT_TRUE(found) << text;
    return found;
}

QQuickItem* WindowTest::row(int index) const {
    QQuickItem* found = nullptr;
    QMetaObject::invokeMethod(item("queueList"), "itemAtIndex", Q_RETURN_ARG(QQuickItem*, found),
                              Q_ARG(int, index));
    EXPECT_TRUE(found) << "row " << index;
    return found;
}

QQuickItem* WindowTest::inRow(int index, const char* objectName) const {
    QQuickItem* found = find(row(index), isNamed(objectName));
    EXPECT_TRUE(found) << objectName;
    return found;
}

QAccessibleInterface* WindowTest::accessibleRow(int index) const {
    QAccessibleInterface* list = nullptr;
    const QAccessibleInterface* window = QAccessible::queryAccessibleInterface(app->window());
    for (int i = 0; i < window->childCount(); ++i) {
        if (window->child(i)->role() == QAccessible::List)
            list = window->child(i);
    }
    EXPECT_TRUE(list);
    return list ? list->child(index) : nullptr;
}

QStringList WindowTest::rowNames() const {
    QStringList names;
    for (int i = 0; const QAccessibleInterface* each = accessibleRow(i); ++i)
        names.append(each->text(QAccessible::Name));
    return names;
}

void WindowTest::click(const QQuickItem* item, Qt::MouseButton button,
                       Qt::KeyboardModifiers modifiers) {
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(app->window(), button, modifiers, middle.toPoint());
    settle();
}

void WindowTest::clickRow(int index, Qt::KeyboardModifiers modifiers) {
    const QPointF inTitle = row(index)->mapToScene({150, 20});
    QTest::mouseClick(app->window(), Qt::LeftButton, modifiers, inTitle.toPoint());
    settle();
}

void WindowTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(app->window(), key, modifiers);
    settle();
}

void WindowTest::type(const QString& text) {
    for (const QChar letter : text)
        QTest::keyClick(app->window(), letter.toLatin1());
    settle();
}

void WindowTest::drop(const QString& text, bool asUrls) {
    QMimeData data;
    if (asUrls)
        data.setUrls({QUrl(text)});
    else
        data.setText(text);
    const QPoint place(700, 400);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(app->window(), &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(app->window(), &drop);
    settle();
}

QString WindowTest::link(const char* kind, const QString& name) {
    return u"http://site/%1/%2"_s.arg(QString::fromLatin1(kind), name);
}

QStringList WindowTest::links(const char* kind, int count) {
    QStringList all;
    for (int i = 1; i <= count; ++i)
        all.append(u"http://site/%1/song%2"_s.arg(QLatin1String(kind)).arg(i));
    return all;
}

void WindowTest::addReadRows(const QStringList& links) {
    for (const DownloadItem& added : controller().addLinksToQueue(links)) {
        const QString title = added.url.section(u'/', -1);
        controller().resolution().applyResolution(
            {{{added.url, added.source, title, u"3:45"_s, {}}}, {}}, added,
            controller().queue().indexOf(added.id));
    }
    settle();
}

bool WindowTest::waitForEnd() const {
    const bool ended = waitUntil([this] { return controller().runs().activeDownloadRuns() == 0; });
    settle();
    return ended;
}

std::vector<qsizetype> WindowTest::selectedRows() const {
    std::vector<qsizetype> rows;
    for (const DownloadItem& each : controller().queue().rows()) {
        if (controller().editor().selection().ids.contains(each.id))
            rows.push_back(controller().queue().indexOf(each.id));
    }
    return rows;
}

}  // namespace reelcrate
