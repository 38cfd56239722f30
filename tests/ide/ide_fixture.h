#pragma once

#include "TIde.h"
#include "os/portable/TPortableOS.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <ostream>
#include <unistd.h>

namespace tarn {

inline void PrintTo(const TTextPos& pos, std::ostream* out) {
    *out << pos.Row << ':' << pos.Col;
}

/// A place of the view as "ROW:COL".
inline std::string PosText(TTextPos pos) {
    return std::to_string(pos.Row) + ":" + std::to_string(pos.Col);
}

/// An IDE over an operating system without windows, and a folder of its own for files.
class IdeTest : public ::testing::Test {
protected:
    IdeTest() {
        FPreviousOS = InstallOS(&Os);
        Folder =
            std::filesystem::temp_directory_path() / ("tarn_ide_" + std::to_string(::getpid()));
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directories(Folder);
        Ide.emplace();
    }
    ~IdeTest() override {
        Ide.reset();
        EXPECT_FALSE(IDEServices());
        EXPECT_EQ(Application(), nullptr);
        EXPECT_EQ(Os.WindowCount(), 0U);
        InstallOS(FPreviousOS);
        std::filesystem::remove_all(Folder);
    }

    std::string Path(std::string_view name) const { return (Folder / name).string(); }
    std::string Write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path file = Folder / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file.string();
    }
    std::string Read(std::string_view name) const {
        std::ifstream file(Folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Opens a unit with that text and gives its view.
    TSourceView& OpenText(std::string_view bytes, std::string_view name = "Unit1.pas") {
        return *Ide->Modules().OpenFile(Write(name, bytes)).Source().View();
    }
    std::string Text() { return Ide->CurrentBuffer()->Text().Text(); }
    /// What a user sees: text, cursor and block of the current view in one line.
    std::string Seen() {
        const TSourceView& view = *Ide->CurrentView();
        std::string seen = Text() + "|" + PosText(view.Cursor());
        if (view.HasBlock())
            seen += "|" + PosText(view.BlockStart()) + "-" + PosText(view.BlockEnd());
        return seen;
    }
    /// The texts of the message boxes shown so far.
    std::vector<std::string> Boxes() const {
        std::vector<std::string> texts;
        for (const auto& dialog : Os.Dialogs()) texts.push_back(dialog.Text);
        return texts;
    }

    TPortableOS Os;
    std::filesystem::path Folder;
    std::optional<TIde> Ide;

private:
    TOperatingSystem* FPreviousOS;
};

} // namespace tarn
