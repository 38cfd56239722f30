#pragma once

#include "Source/TSourceBuffer.h"
#include "TQtDialogs.h"
#include "TTestFolder.h"
#include "TWorkbench.h"
#include "qsSpcEditor.h"
#include "vcl/TListBox.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include <deque>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>

namespace tarn {

/// The workbench with the pack in a folder of its own, used as a user uses it: what is done to it
/// are keys and clicks, dialogs are real ones.
class TWorkbenchTest : public testing::Test {
protected:
    TWorkbenchTest() : Session(&Dialogs) {
        Session.OS().SetModuleFileName(Folder.File("package"));
        Session.OS().SetRegistryFile(Folder.File("registry"));
        Session.LetPackSave();
        Bench.emplace(Session);
        Bench->Start();
        QObject::connect(&FModals, &QTimer::timeout, [this] { FindModal(); });
        FModals.start(1);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Bench->Window()));
        Settle();
    }
    ~TWorkbenchTest() override {
        EXPECT_TRUE(FAnswers.empty()) << FAnswers.size() << " dialogs did not come";
        Session.StopPack();
        Bench.reset();
        QApplication::clipboard()->clear();
    }

    // --- Files ----------------------------------------------------------------------------

    std::string WriteFile(const std::string& name, std::string_view text) {
        std::ofstream(Folder.File(name), std::ios::binary) << text;
        return Folder.File(name);
    }
    std::string ReadFile(const std::string& name) {
        std::ifstream stream(Folder.File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// Opens files with that text in the editor.
    void Open(const std::vector<std::string>& names, std::string_view text = "text") {
        for (const std::string& name : names) Bench->Open(WriteFile(name, text));
        Settle();
    }
    TSourceBuffer& Buffer() { return *Session.Ide().CurrentBuffer(); }
    std::string Text() { return Buffer().Text().Text(); }
    std::string Tabs() {
        std::string names;
        for (TSourceBuffer* buffer : Session.Ide().EditWindow().Tabs()) {
            names += names.empty() ? "" : " ";
            names += buffer == Session.Ide().CurrentBuffer() ? "*" : "";
            names += std::filesystem::path(buffer->FileName()).filename().string();
        }
        return names;
    }

    // --- Widgets --------------------------------------------------------------------------

    TFrontEnd& Front() { return Bench->FrontEnd(); }
    /// Lets everything happen that has been asked for.
    void Settle() {
        FIdle = 0;
        for (int i = 0; i < 3; ++i) {
            Front().Pump();
            QApplication::processEvents();
        }
    }
    template <class F> bool Wait(F&& condition) {
        const bool met = QTest::qWaitFor([&] { return static_cast<bool>(condition()); });
        EXPECT_TRUE(met);
        return met;
    }
    QWidget& WidgetOf(const TControl& control) {
        Front().Flush();
        QWidget* const widget = Front().WidgetOf(control);
        if (!widget) throw Exception("no widget of " + control.Name());
        return *widget;
    }
    TForm& Form() {
        if (!Screen()->ActiveForm()) throw Exception("no form is active");
        return *Screen()->ActiveForm();
    }
    std::string ActiveName() {
        Settle();
        const TForm* const form = Screen()->ActiveForm();
        if (!form) return "-";
        return std::string(form->Name().empty() ? form->ClassName() : form->Name());
    }
    /// A component of the active form.
    template <class C> C& Component(std::string_view name) {
        auto* const found = ClassCast<C>(Form().FindComponent(name));
        if (!found) throw Exception(Form().Name() + " has no " + std::string(name));
        return *found;
    }
    /// The widget of a control of the active form.
    QWidget& Widget(std::string_view name) { return WidgetOf(Component<TControl>(name)); }
    TListBox& List(std::string_view name) { return Component<TListBox>(name); }
    /// The lines of a list, the selected ones with a star; the same in the widget and the control.
    std::string Lines(std::string_view name) {
        Settle();
        const TListBox& list = List(name);
        const auto& view = static_cast<QListWidget&>(Widget(name));
        EXPECT_EQ(view.count(), list.Count());
        std::string text;
        for (int i = 0; i < list.Count(); ++i) {
            EXPECT_EQ(view.item(i)->isSelected(), list.Selected(i)) << i;
            EXPECT_EQ(ToText(view.item(i)->text()), list.ItemsObject()->Get(i));
            text += text.empty() ? "" : " ";
            text += list.Selected(i) ? "*" : "";
            text += list.ItemsObject()->Get(i);
        }
        return text;
    }

    // --- The keyboard ---------------------------------------------------------------------

    /// Who gets keys now.
    QWidget& KeyTarget() {
        QWidget* widget = QApplication::activePopupWidget();
        if (widget && widget->focusWidget()) widget = widget->focusWidget();
        if (!widget) widget = QApplication::focusWidget();
        if (!widget) widget = QApplication::activeWindow();
        if (!widget) throw Exception("no window is active");
        return *widget;
    }
    /// Presses keys such as "Ctrl+." one after the other; they are named as Qt names them.
    void Press(std::initializer_list<const char*> keys) {
        for (const char* const name : keys) {
            const QKeyCombination key = QKeySequence(name)[0];
            ASSERT_NE(key.key(), Qt::Key_unknown) << name;
            QTest::keyClick(&KeyTarget(), key.key(), key.keyboardModifiers());
            Settle();
        }
    }
    void Press(const char* key) { Press({key}); }
    void Type(const QString& text) {
        for (const QChar c : text)
            if (c == '\n')
                Press("Return");
            else
                QTest::keyClick(&KeyTarget(), c.toLatin1());
        Settle();
    }

    // --- The mouse ------------------------------------------------------------------------

    void Click(QWidget& widget, QPoint place = {}, Qt::KeyboardModifiers keys = {},
               Qt::MouseButton button = Qt::LeftButton) {
        if (place.isNull()) place = widget.rect().center();
        // What lies there on top gets the click.
        QWidget* const at = widget.childAt(place);
        QTest::mouseClick(at ? at : &widget, button, keys,
                          at ? at->mapFrom(&widget, place) : place);
        Settle();
    }
    void Click(std::string_view name) { Click(Widget(name)); }
    void DoubleClick(QWidget& widget, QPoint place) {
        QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
        QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
        Settle();
    }
    void Drag(QWidget& widget, QPoint from, QPoint to) {
        // The widget may move with the mouse.
        const QPoint origin = widget.mapToGlobal(QPoint());
        const auto place = [&](QPoint at) { return widget.mapFromGlobal(origin + at); };
        QTest::mousePress(&widget, Qt::LeftButton, {}, from);
        QTest::mouseMove(&widget, place((from + to) / 2));
        Settle();
        QTest::mouseMove(&widget, place(to));
        Settle();
        QTest::mouseRelease(&widget, Qt::LeftButton, {}, place(to));
        Settle();
    }
    /// The second button, as a desktop tells of it.
    void AskForMenu(QWidget& widget, QPoint place = {}) {
        if (place.isNull()) place = widget.rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, widget.mapToGlobal(place));
        QApplication::sendEvent(&widget, &event);
        Settle();
    }
    QWidget& ListArea(std::string_view name) {
        return *static_cast<QListWidget&>(Widget(name)).viewport();
    }
    /// The middle of a line, in the list's area.
    QPoint LinePlace(std::string_view name, int line) {
        auto& view = static_cast<QListWidget&>(Widget(name));
        return view.visualItemRect(view.item(line)).center();
    }
    void ClickLine(std::string_view name, int line, Qt::KeyboardModifiers keys = {}) {
        Click(ListArea(name), LinePlace(name, line), keys);
    }

    // --- Menus ----------------------------------------------------------------------------

    static QString Plain(const QString& caption) { return caption.section('\t', 0, 0).remove('&'); }
    static QAction& Item(const QWidget& menu, const QString& caption) {
        for (QAction* const action : menu.actions())
            if (Plain(action->text()) == caption) return *action;
        throw Exception("no menu item " + ToText(caption));
    }
    /// Clicks an item of a menu bar, and those of the menus that open.
    void ClickMenu(const QStringList& path) {
        QMenuBar& bar = *Bench->Window().menuBar();
        Click(bar, bar.actionGeometry(&Item(bar, path[0])).center());
        ClickPopup(path.mid(1));
    }
    /// Clicks an item of the menu that is open, and so on.
    void ClickPopup(const QStringList& path) {
        for (const QString& caption : path) {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu) << ToText(caption);
            QAction& item = Item(*menu, caption);
            // The command may have the menus made anew.
            const bool opens = item.menu() != nullptr;
            const QPointer<QMenu> below = item.menu();
            Click(*menu, menu->actionGeometry(&item).center());
            if (opens) Wait([&] { return below && below->isVisible(); });
        }
        Settle();
    }
    /// Goes to an item of the menu that is open by keys, and enters it.
    void EnterPopup(const QStringList& path) {
        for (const QString& caption : path) {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu) << ToText(caption);
            const QAction& item = Item(*menu, caption);
            for (int i = 0; i <= menu->actions().size() && menu->activeAction() != &item; ++i)
                Press("Down");
            ASSERT_EQ(menu->activeAction(), &item) << ToText(caption);
            Press(item.menu() ? "Right" : "Return");
        }
        Settle();
    }

    // --- Modal windows --------------------------------------------------------------------

    /// The next modal window is handled by that. It runs within the call that opens the window.
    void Then(std::function<void(QWidget&)> handle) {
        FAnswers.push_back({false, std::move(handle)});
    }
    /// The menu that pops up next, before all that is waited for already, gets those clicks.
    void ThenPopup(const QStringList& path) {
        FAnswers.push_front({true, [this, path](QWidget&) { ClickPopup(path); }});
    }
    /// A user takes longer to answer than the timers of the program take to tick.
    void LetTimersTick() {
        QTimer timer;
        int ticks = 0;
        QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
        timer.start(15);
        Wait([&] { return ticks == 2; });
    }
    /// The next message box gets a click on its button of that text; "Esc" and the like are keys,
    /// "x" closes it by its frame. Its text is remembered.
    void ThenAnswer(const QString& answer) {
        Then([this, answer](QWidget& window) {
            auto* const box = qobject_cast<QMessageBox*>(&window);
            ASSERT_TRUE(box) << window.metaObject()->className();
            Asked += ToText(box->text()) + "\n";
            LetTimersTick();
            if (answer == "x") return (void)box->close();
            for (QAbstractButton* const button : box->buttons())
                if (Plain(button->text()) == answer) return Click(*button);
            Press(answer.toUtf8().constData());
        });
    }
    /// Types in a window that waits for it, then presses a key or clicks a button.
    void ThenType(const QString& text, const QString& answer) {
        Then([this, text, answer](QWidget& window) {
            const auto lines = window.findChildren<QLineEdit*>();
            ASSERT_FALSE(lines.empty());
            QLineEdit* line = window.findChild<QLineEdit*>("fileNameEdit");
            if (!line) line = lines.front();
            line->setFocus();
            Press({"Home", "Shift+End", "Del"});
            Type(text);
            for (auto* const button : window.findChildren<QAbstractButton*>())
                if (button->isVisible() && Plain(button->text()) == answer) return Click(*button);
            // The first one may only close a list of names that begin so.
            const QPointer<QWidget> open(&window);
            for (int i = 0; i < 2 && open && open->isVisible(); ++i)
                Press(answer.toUtf8().constData());
        });
    }
    std::string Asked; ///< the texts of the message boxes that were answered, a line each

    TTestFolder Folder;
    TQtDialogs Dialogs;
    TSession Session;
    std::optional<TWorkbench> Bench;

private:
    struct TAnswer {
        bool IsMenu;
        std::function<void(QWidget&)> Handle;
    };

    /// Finds what waits for an answer. It is given when this event is over, so that what comes in
    /// the meantime is found as well.
    void FindModal() {
        FHandled.removeIf(
            [](const QPointer<QWidget>& each) { return !each || !each->isVisible(); });
        const bool wantsMenu = !FAnswers.empty() && FAnswers.front().IsMenu;
        QWidget* const window =
            wantsMenu ? QApplication::activePopupWidget() : QApplication::activeModalWidget();
        if (!window || !window->isVisible()) {
            if (QApplication::activePopupWidget() && ++FIdle > IdleLimit)
                GiveUp(*QApplication::activePopupWidget(), "left open");
            return;
        }
        if (FHandled.contains(window)) {
            if (++FIdle > IdleLimit) GiveUp(*window, "left open");
            return;
        }
        if (!wantsMenu && window != QApplication::activeWindow() && ++FIdle < IdleLimit) return;
        FHandled << window;
        if (FAnswers.empty()) return GiveUp(*window, "unexpected");
        QMetaObject::invokeMethod(
            &FModals,
            [this, window = QPointer<QWidget>(window), answer = std::move(FAnswers.front())] {
                if (window) Handle(*window, answer);
            },
            Qt::QueuedConnection);
        FAnswers.pop_front();
    }
    void Handle(QWidget& window, const TAnswer& answer) {
        FIdle = 0;
        const QPointer<QWidget> alive(&window);
        try {
            answer.Handle(window);
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
            if (alive) alive->close();
        }
        FIdle = 0;
    }
    void GiveUp(QWidget& window, const char* why) {
        const auto* const box = qobject_cast<QMessageBox*>(&window);
        ADD_FAILURE() << why << ": " << ToText(box ? box->text() : window.windowTitle());
        FIdle = 0;
        window.close();
    }

    static constexpr int IdleLimit = 3000; ///< ticks of at least a millisecond
    QTimer FModals;
    std::deque<TAnswer> FAnswers;
    QList<QPointer<QWidget>> FHandled;
    int FIdle = 0;
};

} // namespace tarn
