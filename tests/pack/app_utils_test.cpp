// The small services around files, windows and exceptions.

#include "TPackHarness.h"
#include "qsAppUtils.h"

#include <cstdlib>
#include <filesystem>
#include <sys/file.h>
#include <tuple>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using TStrs = std::vector<std::string>;

template <class F> std::string RaisedBy(F&& call) {
    try {
        call();
    } catch (const std::exception& error) {
        return std::string(ExceptionClassName(error)) + ": " + error.what();
    }
    return "none";
}

TEST(AppUtils, ApplicationFolder) {
    TSmallIDE ide;
    ide.App->ExeName = "/opt/ide.1/bin/ide.exe";
    EXPECT_EQ(GetAppDir(), "/opt/ide.1/bin/");
    EXPECT_EQ(GetAppIniFileName(), "/opt/ide.1/bin/.ini"); // a kept quirk
    ide.OS.SetKeyDown(0xFF, true);
    EXPECT_TRUE(ServiceKeyPressed(0xFF));
    EXPECT_FALSE(ServiceKeyPressed(0x10));
    ide.OS.SetKeyDown(0xFF, false);
    EXPECT_FALSE(ServiceKeyPressed(0xFF));
}

TEST(AppUtils, FileNames) {
    const std::tuple<std::string_view, std::string_view, std::string_view> names[] = {
        {"/src/Unit1.pas", "Unit1", "/src/New.pas"},
        {"C:\\src.d\\Unit1", "Unit1", "C:\\src.d\\New"},
        {"a.b.c", "a.b", "New.c"},
        {"/src/", "", "/src/New"},
        {"", "", "New"},
    };
    for (const auto& [name, stem, changed] : names) {
        EXPECT_EQ(ExtractFileNameEx(name), stem) << name;
        EXPECT_EQ(ChangeFileName(name, "New"), changed) << name;
    }
    const std::tuple<std::string_view, int, std::string_view> folders[] = {
        {"/a/b/c/", 1, "/a/b/"},
        {"/a/b/c", 1, "/a/b/"},
        {"/a/b/c", 2, "/a/"},
        {"/a/b/c", 9, "/"},
        {"C:\\a\\b", 1, "C:\\a\\"},
        {"C:\\a\\b", 5, "C:\\"},
        {"a/b", 1, "a/"},
        {"a/b", 5, ""},
        {"/a", 0, "/a/"},
        {"", 1, ""},
        {"/", 1, "/"},
    };
    for (const auto& [name, levels, above] : folders)
        EXPECT_EQ(TravelUpDir(name, levels), above) << name << " " << levels;
}

TEST(AppUtils, Files) {
    const std::string folder = CreateTempPath();
    EXPECT_TRUE(fs::is_directory(folder) && fs::is_empty(folder));
    EXPECT_EQ(folder.back(), '/');
    const std::string file = CreateTempFile(folder);
    EXPECT_NE(CreateTempFile(folder), file);
    EXPECT_EQ(ExtractFilePath(file), folder);
    EXPECT_EQ(GetFileSizeEx(file), 0u);
    const std::string big(200000, '\0');
    for (const std::string& data : {std::string("a\r\n\0b", 5), big, std::string()}) {
        WriteFileEx(file, data);
        EXPECT_EQ(ReadFileEx(file), data);
        EXPECT_EQ(GetFileSizeEx(file), data.size());
        EXPECT_EQ(GetFileSizeEx(TFile(file, fmOpenRead).Handle()), data.size());
    }
    AddLogData(file, "one", 0);
    AddLogData(file, "two", 11);
    EXPECT_EQ(ReadFileEx(file), "one\r\ntwo\r\n");
    AddLogData(file, "three", 10);
    EXPECT_EQ(ReadFileEx(file), "three\r\n");
    // Another process is about to empty the file: it does, once.
    TFile other(file, fmAppend);
    ASSERT_EQ(::flock(other.Handle(), LOCK_EX), 0);
    AddLogData(file, "four", 1);
    EXPECT_EQ(ReadFileEx(file), "three\r\nfour\r\n");

    const std::string none = folder + "none/x";
    EXPECT_EQ(RaisedBy([&] { ReadFileEx(none); }),
              "EInOutError: cannot read " + none + ": no such file or directory");
    EXPECT_EQ(RaisedBy([&] { GetFileSizeEx(none); }),
              "EInOutError: cannot read " + none + ": no such file or directory");
    EXPECT_EQ(RaisedBy([&] { WriteFileEx(none, ""); }),
              "EInOutError: cannot write to " + none + ": no such file or directory");
    EXPECT_EQ(RaisedBy([&] { ReadFileEx(folder); }),
              "EInOutError: cannot read " + folder + ": is a directory");
    EXPECT_EQ(RaisedBy([] { WriteFileEx("/dev/full", "x"); }),
              "EInOutError: cannot write to /dev/full: no space left on device");
    EXPECT_EQ(RaisedBy([] { GetFileSizeEx(-1); }),
              "EInOutError: cannot tell the size of an open file: bad file descriptor");
    const char* const former = std::getenv("TMPDIR");
    const std::string tmpDir = former ? former : "";
    ::setenv("TMPDIR", none.c_str(), 1);
    EXPECT_EQ(RaisedBy([] { CreateTempPath(); }), "EInOutError: cannot find the directory of "
                                                  "temporary files: no such file or directory");
    former ? ::setenv("TMPDIR", tmpDir.c_str(), 1) : ::unsetenv("TMPDIR");
    fs::remove_all(folder);
}

TEST(AppUtils, ExceptionTexts) {
    TSmallIDE ide;
    EXPECT_EQ(GetExceptionStr(), "");
    try {
        throw EConvertError("bad value\nin two lines.");
    } catch (...) {
        EXPECT_EQ(GetExceptionStr(),
                  "Exception EConvertError in module pack.module.\nbad value\nin two lines.");
        EXPECT_EQ(GetFullExceptionStr(),
                  "Exception EConvertError in module pack.module.\r\nbad value\nin two lines.");
    }
    const std::string head = "Exception Exception in module pack.module.\n";
    EXPECT_EQ(GetExceptionStr(Exception("")), head);
    const std::string fits(1023 - head.size(), 'x');
    EXPECT_EQ(GetExceptionStr(Exception(fits)), head + fits + ".");
    EXPECT_EQ(GetExceptionStr(Exception(fits + "yz")), head + fits + "y");
    // Whole characters only.
    EXPECT_EQ(GetExceptionStr(Exception(fits + "ß")), head + fits);
}

TEST(AppUtils, MakingExceptions) {
    const auto e = CreateException<EConvertError>("%d of %s", {3, "four"});
    EXPECT_EQ(e.Message(), "3 of four");
    EXPECT_EQ(CreateException<Exception>("100%").Message(), "100%");
    const TResStringRec text{"no %s", 77};
    EXPECT_EQ(CreateException<Exception>(text).Message(), "no %s");
    const auto ident = CreateException<EIdentError>(text, {"file"});
    EXPECT_EQ(ident.Message(), "no file");
    EXPECT_EQ(ident.Ident(), 77);
    EXPECT_EQ(EIdentError("a %d", 5, {1}).Message(), "a 1");
    EXPECT_EQ(EIdentError(TErrorInfo{"b", 6}).Ident(), 6);
    EXPECT_EQ(ident.ClassName(), "EIdentError");
}

TEST(AppUtils, Interfaces) {
    TTestExpert expert;
    EXPECT_EQ(ObjGetInterface<ICustomExpert>(expert), static_cast<ICustomExpert*>(&expert));
    TComponent component;
    EXPECT_EQ(RaisedBy([&] { ObjGetInterface<ICustomExpert>(component); }),
              "Exception: Object[TComponent] does not support given interface.");
}

TEST(AppUtils, Placements) {
    const TWindowPlacement all{1, 2, 3, -4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(WinPlacementToString(all), "1,2,3,-4,5,6,7,8,9,10");
    EXPECT_EQ(StringToWinPlacement("1,2,3,-4,5,6,7,8,9,10"), all);

    TSmallIDE ide;
    TForm form;
    form.SetBoundsRect({10, 20, 300, 200});
    const std::pair<TWindowState, std::string> states[] = {
        {wsNormal, "0,1,-1,-1,-1,-1,10,20,310,220"},
        {wsMinimized, "0,2,-1,-1,-1,-1,10,20,310,220"},
        {wsMaximized, "0,3,-1,-1,-1,-1,10,20,310,220"},
    };
    for (const auto& [state, text] : states) {
        form.SetWindowState(state);
        EXPECT_EQ(GetWinPlacement(form), text);
        TForm other;
        SetWinPlacement(other, text);
        EXPECT_EQ(GetWinPlacement(other), text);
        EXPECT_FALSE(other.Visible());
    }
    for (const std::string minimized : {"6", "7"}) {
        SetWinPlacement(form, "0," + minimized + ",0,0,0,0,1,2,3,4");
        EXPECT_EQ(form.WindowState(), wsMinimized) << minimized;
    }
    const std::string before = GetWinPlacement(form);
    for (const std::string text :
         {"", "1,2,3", "1,2,3,4,5,6,7,8,9", "1,2,3,4,5,6,7,8,9,10,11", "1,2,3,4,5,6,7,8,9,",
          "1,2,x,4,5,6,7,8,9,10", "1,2,3,4,5,6,7,8,9,99999999999"})
        EXPECT_EQ(RaisedBy([&] { SetWinPlacement(form, text); }),
                  "EConvertError: '" + text + "' is no window placement");
    EXPECT_EQ(GetWinPlacement(form), before);
    // Ends that no window has.
    SetWinPlacement(form, "0,1,0,0,0,0,-2147483648,50,2147483647,10");
    EXPECT_EQ(form.BoundsRect(), (TRect{-2147483647 - 1, 50, 2147483647, 0}));
}

TEST(AppUtils, HiddenWindows) {
    TSmallIDE ide;
    HWND window = 0;
    const auto fail = [&window](TMessage& message) {
        if (message.Msg == 1) DeallocHWnd(window); // the window goes while it handles a message
        throw Exception("no answer");
    };
    const std::size_t windows = ide.OS.WindowCount();
    window = AllocHWnd(TWndMethod::Calling(fail));
    EXPECT_THROW(ide.OS.SendMessage(window, 0, 0, 0), Exception);
    DeallocHWnd(window);
    EXPECT_EQ(window, 0u);
    DeallocHWnd(window);
    window = SafeAllocHWnd(TWndMethod::Calling(fail));
    ide.OS.SendMessage(window, 0, 0, 0);
    EXPECT_EQ(ide.LastDialog(), "no answer");
    ide.OS.SendMessage(window, 1, 0, 0);
    EXPECT_EQ(ide.OS.Dialogs().size(), 2u);
    EXPECT_EQ(window, 0u);
    EXPECT_EQ(ide.OS.WindowCount(), windows);
}

} // namespace
} // namespace tarn
