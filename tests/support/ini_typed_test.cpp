#include "TIniStrings.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(IniStrings, FloatsAndDates) {
    TIniStrings ini;
    ini.WriteFloat("S", "float", -1.25e-7);
    ini.WriteDate("S", "date", 46217.75);
    ini.WriteTime("S", "time", 46217.75);
    ini.WriteDateTime("S", "both", 46217.75);
    ini.AddString("S", "great=1e400");
    EXPECT_EQ(ini.GetText(), "[S]\r\nfloat=-1.25E-7\r\ndate=7/14/2026\r\ntime=6:00:00 PM\r\n"
                             "both=7/14/2026 6:00:00 PM\r\ngreat=1e400\r\n\r\n");
    EXPECT_EQ(ini.ReadFloat("S", "float", 0), -1.25e-7);
    EXPECT_EQ(ini.ReadDate("S", "date", 0), 46217);
    EXPECT_EQ(ini.ReadTime("S", "time", 0), 0.75);
    EXPECT_EQ(ini.ReadDateTime("S", "both", 0), 46217.75);
    for (const std::string_view key : {"none", "great"}) {
        EXPECT_EQ(ini.ReadFloat("S", key, 5.5), 5.5);
        EXPECT_EQ(ini.ReadDate("S", key, 5.5), 5.5);
        EXPECT_EQ(ini.ReadTime("S", key, 5.5), 5.5);
        EXPECT_EQ(ini.ReadDateTime("S", key, 5.5), 5.5);
    }
}

} // namespace
} // namespace tarn
