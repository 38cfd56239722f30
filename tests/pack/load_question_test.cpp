// The question of a tolerant load in the running pack: a warning box with Yes and No.

#include "TPackHarness.h"
#include "qsDataHndl.h"

namespace tarn {
namespace {

using namespace std::string_literals;

TEST(LoadQuestion, IsAWarningOfThePack) {
    TSmallIDE ide;
    ide.Initialize();
    TComponent component;
    TPersistent* const object = &component;
    const std::string noProperty = "TPF0\nTComponent\0\4Nope\2\1\0\0"s;
    for (const TDialogAnswer answer : {IDYES, IDNO}) {
        ide.OS.QueueAnswer(answer);
        EXPECT_EQ(SetPropsEx({&object, 1}, noProperty, osfBin), answer == IDYES);
        EXPECT_EQ(ide.LastDialog(),
                  "Load error.\r\noffset 21: TComponent.Nope: property Nope does not exist.\r\n"
                  "Continue loading?");
        EXPECT_EQ(ide.OS.Dialogs().back().Flags, MB_ICONWARNING | MB_YESNO);
    }
}

} // namespace
} // namespace tarn
