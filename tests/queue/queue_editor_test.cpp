#include "queue/queue_editor.h"

#include "queue/queue_store.h"
#include "support/printers.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

constexpr KeyModifiers none;
constexpr KeyModifiers shift = KeyModifier::shift;
constexpr KeyModifiers command = KeyModifier::command;

class Field : public TextEditing {
public:
    bool isEditing() const override { return edits; }
    void endEditing() override { edits = false; }
    bool edits = false;
};

/// Ten rows, named by their numbers from 1 to 10.
class QueueEditorTest : public testing::Test {
protected:
    QueueEditorTest() {
        QList<DownloadItem> rows(10);
        for (DownloadItem& row : rows)
            row.id = QUuid::createUuid();
        store.append(rows);
        ids.append(QUuid());
        for (const DownloadItem& row : rows)
            ids.append(row.id);
        QObject::connect(&editor, &QueueEditor::summaryChanged,
                         [this](const QString& text) { summary = text; });
    }

    void click(int row, KeyModifiers modifiers = none) {
        editor.updateQueueSelection(ids.at(row), modifiers);
    }

    QSet<QUuid> rows(const QList<int>& numbers) const {
        QSet<QUuid> set;
        for (int number : numbers)
            set.insert(ids.at(number));
        return set;
    }

    int numberOf(const std::optional<QUuid>& id) const {
        return id ? static_cast<int>(ids.indexOf(*id)) : 0;
    }

    bool press(quint16 code, KeyModifiers modifiers = none) {
        return editor.handleKeyDown({code, modifiers});
    }

    /// Selected rows, anchor and focus; zero stands for none.
    void expectSelection(const QList<int>& numbers, int anchor, int focus) {
        EXPECT_EQ(editor.selection().ids, rows(numbers));
        EXPECT_EQ(numberOf(editor.selection().anchor), anchor);
        EXPECT_EQ(numberOf(editor.selection().focus), focus);
    }

    QueueStore store;
    Field field;
    bool isDownloading = false;
    QSet<QUuid> stopped;
    QueueEditor editor{store, [this] { return isDownloading; }, &field,
                       [this](const QSet<QUuid>& rows) {
                           stopped = rows;
                           return true;
                       }};
    QList<QUuid> ids;
    QString summary;
};

TEST_F(QueueEditorTest, ClicksSelectToggleAndExtend) {
    click(1, shift);  // without an anchor, a plain click
    expectSelection({1}, 1, 1);
    click(3, shift);
    expectSelection({1, 2, 3}, 1, 3);
    click(2);
    click(5, shift);
    expectSelection({2, 3, 4, 5}, 2, 5);
    click(1, shift);
    expectSelection({1, 2}, 2, 1);
    click(7, command);
    expectSelection({1, 2, 7}, 7, 7);
    click(9, shift | command);
    expectSelection({1, 2, 7, 8, 9}, 7, 9);
    click(7, command);
    expectSelection({1, 2, 8, 9}, 7, 7);

    store.remove({ids.at(7)});
    click(3, shift | command);  // the anchor has gone another way: a command-click
    expectSelection({1, 2, 3, 8, 9}, 3, 3);
    editor.updateQueueSelection(QUuid::createUuid(), none);
    expectSelection({1, 2, 3, 8, 9}, 3, 3);
}

TEST_F(QueueEditorTest, ArrowsMoveFromWhereTheSelectionIs) {
    EXPECT_FALSE(press(KeyEvent::downArrow));  // not the queue's yet
    editor.clickQueueArea();
    EXPECT_TRUE(press(KeyEvent::downArrow));
    expectSelection({1}, 1, 1);
    EXPECT_TRUE(press(KeyEvent::upArrow));
    expectSelection({1}, 1, 1);

    editor.clearQueueSelectionFromUserAction();
    EXPECT_TRUE(press(KeyEvent::upArrow, shift));
    expectSelection({10}, 10, 10);
    EXPECT_TRUE(press(KeyEvent::downArrow, shift));
    expectSelection({10}, 10, 10);

    click(2);
    for (int i = 0; i < 3; ++i)
        press(KeyEvent::downArrow, shift);
    expectSelection({2, 3, 4, 5}, 2, 5);
    press(KeyEvent::upArrow, shift);
    expectSelection({2, 3, 4}, 2, 4);
    press(KeyEvent::upArrow);
    expectSelection({3}, 3, 3);
}

TEST(QueueSelection, AStepWithoutFocusBeginsAtTheSelectionsEnd) {
    QueueStore store;
    QList<DownloadItem> rows(9);
    for (DownloadItem& row : rows)
        row.id = QUuid::createUuid();
    store.append(rows);
    QueueSelection selection;
    selection.ids = {rows.at(2).id, rows.at(7).id, QUuid::createUuid()};
    EXPECT_EQ(selection.moved(1, false, store).focus, rows.at(3).id);
    EXPECT_EQ(selection.moved(-1, false, store).focus, rows.at(6).id);
    const QueueSelection extended = selection.moved(1, true, store);
    EXPECT_EQ(extended.anchor, rows.at(2).id);
    EXPECT_EQ(extended.ids, (QSet<QUuid>{rows.at(2).id, rows.at(3).id}));
}

TEST_F(QueueEditorTest, KeysActOnTheQueueOnlyWhenTheyAreItsOwn) {
    EXPECT_FALSE(press(KeyEvent::a, command));
    editor.clickQueueArea();
    EXPECT_FALSE(press(KeyEvent::a));
    EXPECT_FALSE(editor.handleKeyDown({std::nullopt, command}));
    EXPECT_FALSE(press(KeyEvent::escape));
    EXPECT_TRUE(press(KeyEvent::a, command));
    EXPECT_EQ(summary, QStringLiteral("Selected 10 songs"));
    expectSelection({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 1, 10);
    EXPECT_FALSE(press(40));

    EXPECT_FALSE(press(KeyEvent::period));
    EXPECT_TRUE(stopped.isEmpty());
    EXPECT_TRUE(press(KeyEvent::period, command));
    EXPECT_EQ(stopped, editor.selection().ids);

    field.edits = true;
    for (quint16 key :
         {KeyEvent::a, KeyEvent::backspace, KeyEvent::escape, KeyEvent::upArrow, KeyEvent::period})
        EXPECT_FALSE(press(key, command));
    EXPECT_FALSE(editor.deleteSelectedQueueItemsFromUserAction());
    click(1);
    EXPECT_FALSE(field.edits);
    EXPECT_TRUE(press(KeyEvent::escape));
    EXPECT_EQ(summary, QStringLiteral("Selection cleared"));
    expectSelection({}, 0, 0);
    EXPECT_TRUE(editor.selection().keyboardScopeActive);
}

TEST_F(QueueEditorTest, DeletionKeepsTheRestAndWaitsForRuns) {
    click(2);
    click(4, shift);
    isDownloading = true;
    EXPECT_FALSE(press(KeyEvent::backspace));
    EXPECT_FALSE(editor.deleteQueueItems(rows({1})));
    isDownloading = false;

    EXPECT_TRUE(editor.deleteQueueItems(rows({2})));  // one of three, by its own command
    EXPECT_EQ(summary, QStringLiteral("Removed selected song"));
    EXPECT_EQ(editor.selection().ids, rows({3, 4}));
    EXPECT_TRUE(rows({3, 4}).contains(*editor.selection().anchor));
    EXPECT_TRUE(press(KeyEvent::forwardDelete));
    EXPECT_EQ(summary, QStringLiteral("Removed 2 selected songs"));
    expectSelection({}, 0, 0);
    EXPECT_FALSE(press(KeyEvent::backspace));
    EXPECT_EQ(store.rows().first().id, ids.at(1));

    QSignalSpy removals(&store, &QueueStore::rowsRemoved);
    press(KeyEvent::a, command);
    EXPECT_TRUE(press(KeyEvent::backspace));
    EXPECT_EQ(removals.size(), 1);
    EXPECT_EQ(summary, QStringLiteral("Ready"));
    expectSelection({}, 0, 0);
    EXPECT_TRUE(editor.selection().keyboardScopeActive) << "for the rows that come next";
}

TEST_F(QueueEditorTest, DeletionLeavesAnchorAndFocusAtRowsThatAreThere) {
    for (int gone = 2; gone <= 8; ++gone)
        click(gone, command);
    click(9, command);
    click(1, command);
    store.remove(rows({2, 3, 4, 5, 6, 7, 8}));  // to be read, they made way for others
    EXPECT_TRUE(editor.deleteQueueItems(rows({1})));
    EXPECT_EQ(numberOf(editor.selection().anchor), 9);
    EXPECT_EQ(numberOf(editor.selection().focus), 9);
}

}  // namespace
}  // namespace reelcrate
