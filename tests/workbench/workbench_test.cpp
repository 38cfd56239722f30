// The commands of the workbench: files, search, the end, long texts.

#include "TEditorMirror.h"
#include "TTestFolder.h"
#include "TTextSearch.h"
#include "TWorkbench.h"
#include "Windows/TCpuWindow.h"
#include "WithNext.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include <fstream>
#include <unistd.h>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Strings = std::vector<std::string>;

class Workbench : public testing::Test {
protected:
    Workbench() {
        Session.OS().SetModuleFileName(Folder.File("package"));
        Start();
    }

    void Start() {
        Bench.emplace(Session);
        Bench->Start();
    }

    TIde& Ide() { return Session.Ide(); }
    std::string Write(const std::string& name, std::string_view text) const {
        std::ofstream(Folder.File(name), std::ios::binary) << text;
        return Folder.File(name);
    }
    std::string Read(const std::string& name) const { return LoadFileText(Folder.File(name)); }
    /// The open modules by the names of their files.
    Strings Open() {
        Strings names;
        for (const auto& module : Ide().Modules())
            names.push_back(fs::path(module->FileName()).filename().string());
        return names;
    }
    Strings Boxes() {
        Strings texts;
        for (const auto& dialog : Session.OS().Dialogs()) texts.push_back(dialog.Text);
        return texts;
    }
    void Click(const char* item) {
        Ide().ClickMenuItem(*Session.FindMenuItem(item));
        Bench->FrontEnd().Flush();
    }
    QString Status() { return Bench->Window().statusBar()->currentMessage(); }
    QsciScintilla& View() {
        return static_cast<QsciScintilla&>(
            *Bench->FrontEnd().WidgetOf(Ide().EditWindow().Editor()));
    }
    std::string Shown() {
        const auto size =
            static_cast<std::size_t>(View().SendScintilla(QsciScintilla::SCI_GETLENGTH));
        const auto* const bytes = static_cast<const char*>(
            View().SendScintillaPtrResult(QsciScintilla::SCI_GETCHARACTERPOINTER));
        return {bytes, size};
    }
    /// Clicks a button of the next box, by its text without "&"; its lines come back.
    static std::shared_ptr<QString> Answer(const QString& button) {
        auto text = std::make_shared<QString>();
        WithNext<QMessageBox>([text, button](QMessageBox& box) {
            *text = box.text();
            for (QAbstractButton* const one : box.buttons())
                if (one->text().remove('&') == button) return one->click();
            box.reject();
        });
        return text;
    }

    TTestFolder Folder;
    TSession Session;
    std::optional<TWorkbench> Bench;
};

TEST_F(Workbench, OpensWhatIsThereAndNamesWhatIsNot) {
    Write("Пример.pas", "unit A;");
    fs::create_directory(Folder.File("Folder.pas"));
    Write("P.dpr", "program P;\nbegin\nend.\n");
    Write("Binary.pas", "TPF0\x00\x01"s);
    Write("Empty.txt", "");
    const fs::path before = fs::current_path();
    fs::current_path(Folder.Path());
    for (const char* const name : {"Пример.pas", "./Folder.pas", "None.pas", "Binary.pas", "P.DPR",
                                   "P.dpr", "Empty.txt", "Пример.pas"})
        Bench->Open(name);
    fs::current_path(before);
    const std::string folder = Folder.Path() + "/";
    EXPECT_EQ(Boxes(), (Strings{"cannot read " + folder + "Folder.pas: is a folder",
                                "cannot read " + folder + "None.pas: no such file or folder",
                                "cannot open Binary.pas: a binary file, not a text",
                                "cannot read " + folder + "P.DPR: no such file or folder"}));
    EXPECT_EQ(Open(), (Strings{"Пример.pas", "P.dpr", "Empty.txt"}));
    EXPECT_EQ(Ide().CurrentBuffer()->Text().Text(), "unit A;");
}

TEST_F(Workbench, DroppedFilesAreOpened) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(FromText(Write("A.pas", "a"))),
                  QUrl::fromLocalFile(FromText(Write("B c.pas", "b")))});
    for (QWidget* const target : {static_cast<QWidget*>(&Bench->Window()), View().viewport()}) {
        const auto send = [&](QDropEvent&& event) {
            QApplication::sendEvent(target, &event);
            return event.isAccepted();
        };
        EXPECT_TRUE(
            send(QDragEnterEvent({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier)));
        EXPECT_TRUE(
            send(QDropEvent({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier)));
        EXPECT_EQ(Open(), Strings{}); // the other program is not kept waiting
        QApplication::processEvents();
        EXPECT_EQ(Open(), (Strings{"A.pas", "B c.pas"}));
        EXPECT_EQ(Ide().CurrentBuffer()->Text().Text(), "b");
        Ide().Modules().CloseAll(true);
    }
}

TEST_F(Workbench, RecordingsOpenTheCpuWindow) {
    Bench->Open(TARN_SOURCE_DIR "/examples/sum.cpu");
    TCpuWindow* const window = Ide().CpuWindow();
    ASSERT_TRUE(window);
    auto& code = static_cast<TAddressPane&>(*window->FindComponent("DisassemblerView1"));
    auto& dump = static_cast<TAddressPane&>(*window->FindComponent("DumpView"));
    const auto press = [&](TAddressPane& pane, const std::vector<int>& keys) {
        for (const int key : keys) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(Bench->FrontEnd().WidgetOf(pane), &event);
        }
        return HexText(static_cast<std::uint32_t>(pane.Selected()));
    };
    EXPECT_EQ(press(code, {}), "0040100E");
    EXPECT_EQ(press(code, {Qt::Key_Down, Qt::Key_Down}), "00401013"); // by instructions
    EXPECT_EQ(press(code, {Qt::Key_Up, Qt::Key_Right}), "00401010");
    EXPECT_EQ(press(dump, {Qt::Key_Right, Qt::Key_Down}), "00402011"); // by bytes, of 16 a row
    EXPECT_EQ(press(dump, {Qt::Key_Up, Qt::Key_Left, Qt::Key_Left}), "00401FFF");
    QWidget& widget = *Bench->FrontEnd().WidgetOf(code);
    QMouseEvent click(QEvent::MouseButtonPress, QPointF(20, 3 * widget.fontMetrics().height()),
                      QPointF(), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &click);
    EXPECT_EQ(press(code, {}), "0040100E"); // below its label and its source line
    EXPECT_EQ(widget.accessibleDescription().section('\n', -1).left(8), "0040100E");
    // It is closed, and opened again by the menu as long as the program stands.
    Ide().CloseCpuWindow();
    Click("ViewCpuWindowItem");
    EXPECT_TRUE(Ide().CpuWindow());
    Ide().ResumeProgram();
    EXPECT_FALSE(Ide().ClickMenuItem(*Session.FindMenuItem("ViewCpuWindowItem")));
    EXPECT_EQ(Boxes(), Strings());
}

TEST_F(Workbench, TheMainWindowIsWhereItWasLeft) {
    const std::string file = Folder.File("Workbench.ini");
    Bench->KeepPlace(file); // there is none yet
    Bench->Window().setGeometry(40, 50, 610, 420);
    Bench.reset();
    Bench.emplace(Session);
    EXPECT_NE(Bench->Window().size(), QSize(610, 420));
    Bench->KeepPlace(file);
    EXPECT_EQ(Bench->Window().geometry(), QRect(40, 50, 610, 420));
    Write("Workbench.ini", "no settings at all\n[");
    Bench->KeepPlace(file);
    EXPECT_EQ(Bench->Window().geometry(), QRect(40, 50, 610, 420));
}

TEST_F(Workbench, SavesUnderAnotherNameAndOverChanges) {
    EXPECT_FALSE(Session.FindMenuItem("FileSaveAsItem") == nullptr);
    Click("FileSaveAsItem"); // no file is open
    Bench->Open(Write("A.pas", "a"));
    Ide().TypeText("1");
    Session.OS().QueueFile(Folder.File("B.pas"));
    Click("FileSaveAsItem");
    EXPECT_EQ(Open(), Strings{"B.pas"});
    EXPECT_EQ(Read("A.pas") + Read("B.pas"), "a1a");
    Ide().TypeText("2");
    const std::string question = Write("B.pas", "else's") +
                                 " was changed or deleted by another program since it was read."
                                 "\n\nWrite over that?";
    Session.OS().QueueAnswer(IDNO);
    Click("FileSaveItem");
    EXPECT_EQ(Read("B.pas"), "else's");
    Session.OS().QueueAnswer(IDYES);
    Click("FileSaveItem");
    EXPECT_EQ(Read("B.pas"), "12a");
    Ide().TypeText("3");
    Write("B.pas", "else's");
    for (const TDialogAnswer answer : {IDYES, IDNO}) Session.OS().QueueAnswer(answer);
    EXPECT_FALSE(Ide().Modules().CloseAll());
    EXPECT_EQ(Read("B.pas") + Ide().CurrentBuffer()->Text().Text(), "else's123a");
    const std::string save = "Save changes to " + Folder.File("B.pas") + "?";
    EXPECT_EQ(Boxes(), (Strings{Folder.File("B.pas"), question, question, save, question}));
}

// --- Search -----------------------------------------------------------------------------------

TEST_F(Workbench, FindsForthAndBackAndAroundTheEnd) {
    Bench->Open(Write("A.pas", "Ärger\r\närger ab\nÄRGER x.x"));
    const struct {
        const char* Item;
        const char* Sought; ///< typed into the dialog; null where none comes
        bool MatchCase;
        TTextPos From, To;
        bool Around;
    } steps[] = {
        {"SearchAgainItem", "ärger", false, {1, 1}, {1, 7}, false},
        {"SearchAgainItem", nullptr, false, {2, 1}, {2, 7}, false},
        {"SearchAgainItem", nullptr, false, {3, 1}, {3, 7}, false},
        {"SearchAgainItem", nullptr, false, {1, 1}, {1, 7}, true},
        {"SearchBackItem", nullptr, false, {3, 1}, {3, 7}, true},
        {"SearchBackItem", nullptr, false, {2, 1}, {2, 7}, false},
        {"SearchFindItem", "ÄRGER", true, {3, 1}, {3, 7}, false},
        {"SearchBackItem", nullptr, true, {3, 1}, {3, 7}, true}, // the only one
        {"SearchFindItem", ".", false, {3, 9}, {3, 10}, false},
    };
    for (const auto& [item, sought, matchCase, from, to, around] : steps) {
        if (sought)
            WithNext<QDialog>([text = sought, checked = matchCase](QDialog& dialog) {
                dialog.findChild<QLineEdit*>()->setText(text);
                dialog.findChild<QCheckBox*>()->setChecked(checked);
                dialog.accept();
            });
        Click(item);
        const TSourceView& view = *Ide().CurrentView();
        EXPECT_EQ(view.BlockStart(), from) << item;
        EXPECT_EQ(view.BlockEnd(), to) << item;
        EXPECT_EQ(Status().startsWith("The search went on from"), around) << item;
    }
    WithNext<QDialog>([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), "."); // what is selected
        dialog.findChild<QLineEdit*>()->setText("nowhere");
        dialog.accept();
    });
    Click("SearchFindItem");
    for (const char* const line : {"0", "4", "x", "2"}) {
        Session.OS().QueueInput(line);
        Click("SearchGoToItem");
    }
    EXPECT_EQ(Ide().CurrentView()->Cursor(), (TTextPos{2, 1}));
    Strings boxes = Boxes();
    std::erase_if(boxes, [](const std::string& text) { return text.size() < 3; }); // the inputs
    EXPECT_EQ(boxes,
              (Strings{"\"nowhere\" was not found", "There is no line 0: the lines are 1 to 3",
                       "There is no line 4: the lines are 1 to 3",
                       "There is no line x: the lines are 1 to 3"}));
}

TEST_F(Workbench, KeysInADialogDoNotReachTheEditorBehind) {
    Bench->Open(Write("A.pas", "unit A;"));
    const auto edits = [](QWidget& line) {
        QTest::keyClicks(&line, "ab");
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_V})
            QTest::keyClick(&line, key, Qt::ControlModifier);
    };
    QString sought;
    WithNext<QDialog>([&](QDialog& dialog) {
        auto& line = *dialog.findChild<QLineEdit*>();
        edits(line);
        QTest::keyClick(&line, Qt::Key_F4, Qt::ControlModifier); // closes a file elsewhere
        sought = line.text();
        dialog.reject();
    });
    Click("SearchFindItem");
    EXPECT_EQ(sought, "abab");
    EXPECT_EQ(Open(), Strings{"A.pas"});
    EXPECT_EQ(Shown(), "unit A;");
    EXPECT_FALSE(Ide().CurrentView()->HasBlock());
}

TEST_F(Workbench, TellsFileAndPlaceAndGoesRoundTheFiles) {
    const auto told = [&] {
        Bench->FrontEnd().Flush();
        QString text = Bench->Window().windowTitle();
        for (const QLabel* const label : Bench->Window().statusBar()->findChildren<QLabel*>())
            text += "|" + label->text();
        return text;
    };
    EXPECT_EQ(told(), "Embedded IDE|");
    Bench->Open(Write("A.pas", "unit A;\nend."));
    Bench->Open(Write("B.pas", "unit B;"));
    Bench->Open(Write("C.pas", "unit C;"));
    const struct {
        Qt::Key Key;
        Qt::KeyboardModifiers Modifiers;
        QString Told;
    } rows[] = {
        {Qt::Key_Tab, Qt::ControlModifier, "A.pas - Embedded IDE|1: 1"},
        {Qt::Key_Down, Qt::NoModifier, "A.pas - Embedded IDE|2: 1"},
        {Qt::Key_Space, Qt::NoModifier, "A.pas * - Embedded IDE|2: 2   Modified"},
        {Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier, "C.pas - Embedded IDE|1: 1"},
        {Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier, "B.pas - Embedded IDE|1: 1"},
        {Qt::Key_Tab, Qt::ControlModifier, "C.pas - Embedded IDE|1: 1"},
        {Qt::Key_Tab, Qt::NoModifier, "C.pas * - Embedded IDE|1: 9   Modified"}, // as it is seen
    };
    for (const auto& [key, modifiers, expected] : rows) {
        QTest::keyClick(&View(), key, modifiers);
        EXPECT_EQ(told(), expected);
    }
}

TEST(TextSearch, AgreesWithAPlainOne) {
    // Few letters, so that places overlap, and a gap that stands anywhere.
    std::uint32_t random = 1;
    const auto next = [&random](std::uint32_t below) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % below;
    };
    for (int round = 0; round < 2000; ++round) {
        std::string plain;
        for (std::uint32_t size = next(40); plain.size() < size;) plain += "aAbB\n"[next(5)];
        TEditText text(plain);
        const std::size_t gap = next(static_cast<std::uint32_t>(plain.size()) + 1);
        text.Replace(gap, gap, "b");
        plain.insert(gap, "b");
        std::string sought;
        for (std::uint32_t size = 1 + next(4); sought.size() < size;) sought += "aAb"[next(3)];
        const bool matchCase = next(2) == 0;
        const std::size_t to = next(static_cast<std::uint32_t>(plain.size()) + 1);
        const std::size_t from = next(static_cast<std::uint32_t>(to) + 1);
        const auto fold = [&](const std::string& folded) {
            return matchCase ? folded : LowerCase(folded);
        };
        const std::string range = fold(plain.substr(from, to - from));
        const auto place = [from](std::size_t at) {
            return at == std::string::npos ? std::nullopt : std::optional(at + from);
        };
        const TTextSearch search(FromText(sought), matchCase);
        ASSERT_EQ(search.First(text, from, to), place(range.find(fold(sought))))
            << sought << " in " << plain;
        ASSERT_EQ(search.Last(text, from, to), place(range.rfind(fold(sought))))
            << sought << " in " << plain;
    }
}

// --- Long texts -------------------------------------------------------------------------------

TEST_F(Workbench, ALongTextIsTheSameInTheEditor) {
    std::string text;
    while (text.size() < (9 << 20)) text += "  procedure A; // ä\r\n  begin end;\n\r";
    Bench->Open(Write("Long.pas", text));
    EXPECT_EQ(Shown(), text);
    View().setFocus();
    const auto press = [&](int key, const QString& typed = {}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, typed);
        QApplication::sendEvent(&View(), &event);
    };
    // Typed, deleted, pasted: each is in the buffer before the next key comes.
    View().SendScintilla(QsciScintilla::SCI_GOTOPOS, 5000000ul);
    QApplication::processEvents();
    press(Qt::Key_X, "x");
    press(Qt::Key_Y, "ö");
    press(Qt::Key_Backspace);
    View().SendScintilla(QsciScintilla::SCI_REPLACESEL, 0ul, "pasted\r\n");
    press(Qt::Key_Delete);
    QApplication::processEvents();
    std::string expected = text;
    expected.replace(5000000, 1, "xpasted\r\n");
    EXPECT_TRUE(Ide().CurrentBuffer()->Text().Text() == expected);
    EXPECT_TRUE(Shown() == expected);
    // A command of somebody else in the midst, and undo.
    Ide().RunCommand([&] { Ide().CurrentBuffer()->Text().Replace(7000000, 7000100, "instead"); });
    Bench->FrontEnd().Flush();
    expected.replace(7000000, 100, "instead");
    EXPECT_TRUE(Shown() == expected);
    while (Ide().Undo()) Bench->FrontEnd().Flush();
    EXPECT_TRUE(Shown() == text);
}

TEST_F(Workbench, OpeningIsGivenUpWithoutATrace) {
    for (const char* const name : {"A.pas", "B.pas", "A.pas"}) Bench->Open(Write(name, "a"));
    const std::string file = Write("Long.pas", std::string(16 << 20, '\n'));
    for (const int share : {1, 60, 150}) { // while it is read, and while it is shown
        int most = 0;
        QString label;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            auto* const bar = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
            if (!bar || bar->value() < share || bar->wasCanceled()) return;
            most = bar->value();
            label = bar->labelText();
            bar->cancel();
        });
        watch.start(0);
        Bench->Open(file);
        EXPECT_GE(most, share);
        EXPECT_EQ(label, "Opening Long.pas");
        EXPECT_EQ(Open(), (Strings{"A.pas", "B.pas"}));
        EXPECT_EQ(Ide().CurrentBuffer()->FileName(), Folder.File("A.pas"));
        EXPECT_EQ(Shown(), "a");
    }
    EXPECT_EQ(Boxes(), Strings{});
    Bench->Open(file);
    EXPECT_EQ(Open(), (Strings{"A.pas", "B.pas", "Long.pas"}));
    EXPECT_EQ(Shown().size(), std::size_t{16} << 20);
}

// --- The end ----------------------------------------------------------------------------------

TEST_F(Workbench, TheEndOfTheSessionAsksAndKeepsWhatIsNotDecided) {
    Bench->KeepRecovery(Folder.File("Recovery"));
    Bench->Open(Write("A.pas", "a"));
    Ide().TypeText("1");
    const auto left = [&] {
        Strings texts;
        for (const auto& entry : fs::recursive_directory_iterator(Folder.File("Recovery")))
            if (entry.path().extension() == ".recovery")
                texts.push_back(ReadRecovery(entry.path().string()).Text);
        return texts;
    };
    EXPECT_TRUE(Bench->EndSession(false)); // no time for questions
    EXPECT_EQ(left(), Strings{"1a"});
    Session.OS().QueueAnswer(IDCANCEL);
    EXPECT_FALSE(Bench->EndSession(true));
    EXPECT_EQ(left(), Strings{"1a"});
    fs::permissions(Folder.File("A.pas"), fs::perms::none);
    fs::remove(Folder.File("A.pas"));
    fs::create_directory(Folder.File("A.pas"));
    Session.OS().QueueAnswer(IDYES);
    EXPECT_FALSE(Bench->EndSession(true)); // it cannot be saved
    Session.OS().QueueAnswer(IDNO);
    EXPECT_TRUE(Bench->EndSession(true));
    EXPECT_EQ(left(), Strings{});
    EXPECT_EQ(Open(), Strings{"A.pas"});
}

TEST_F(Workbench, OffersWhatACrashHasLeft) {
    const std::string root = Folder.File("Recovery"), unit = Write("A.pas", "a");
    const auto crash = [&](std::string_view text) {
        TRecoveryFolder folder(root);
        const TRecoveryCopy copy{unit, IdentityOf(unit), text.size(), {}};
        SaveFileText(folder.NewFile(), RecoveryHead(copy) + std::string(text));
    };
    crash("typed");
    const struct {
        const char* Button;
        const char* Text; ///< in the editor afterwards; null when nothing is open
        bool AsksAgain;
    } cases[] = {
        {"Ask Later", nullptr, true}, {"Restore", "typed", true}, {"Discard", nullptr, false}};
    for (const auto& [button, text, asksAgain] : cases) {
        const auto asked = Answer(button);
        Bench->KeepRecovery(root);
        EXPECT_TRUE(asked->contains(FromText(unit))) << asked->toStdString();
        EXPECT_FALSE(asked->contains("has changed"));
        TSourceBuffer* const buffer = Ide().CurrentBuffer();
        ASSERT_EQ(buffer != nullptr, text != nullptr) << button;
        if (buffer) {
            EXPECT_EQ(buffer->Text().Text() + (buffer->Modified() ? "" : "!"), text);
        }
        Bench.reset(); // ends without a decision on what is open
        Ide().Modules().CloseAll(true);
        EXPECT_EQ(TRecovery(root).TakeLeft().size(), asksAgain ? 1U : 0U) << button;
        Start();
    }
    crash("typed");
    Write("A.pas", "other");
    const auto asked = Answer("Restore");
    Bench->KeepRecovery(root);
    EXPECT_TRUE(asked->contains("(the file has changed since)")) << asked->toStdString();
    Session.OS().QueueAnswer(IDNO);
    Click("FileSaveItem");
    EXPECT_EQ(Read("A.pas"), "other");
}

} // namespace
} // namespace tarn
