// Form files: from text to binary and back, beside a copy of the input and beside std::getline over
// the text. The forms are one of ordinary kind, one with large binary blocks, and the files of a
// folder: that of TARN_FORMS, or the collection beside the project where there is one.

#include "bench_race.h"
#include "rtl/SafeFile.h"
#include "streaming/FormConvert.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tarn {
namespace {

/// Form files of one kind.
using TFiles = std::vector<std::string>;

constexpr std::size_t MB = std::size_t{1} << 20;

std::string Converted(std::string_view bytes, TFormFileKind to) {
    TFormLayout layout;
    return ConvertForm(bytes, to, layout);
}

/// What a designer makes of panels with controls.
std::string OrdinaryForm(std::size_t size) {
    std::string text = "object MainForm: TMainForm\r\n  Left = 192\r\n  Caption = 'Orchard'\r\n";
    for (int i = 0; text.size() < size; ++i)
        text += Format("  object Panel%0:d: TPanel\r\n    Left = 8\r\n    Top = %0:d\r\n"
                       "    Width = 433\r\n    Height = 25\r\n    Align = alTop\r\n"
                       "    BevelOuter = bvNone\r\n    Color = 16777215\r\n    TabOrder = 3\r\n"
                       "    object Button%0:d: TButton\r\n      Anchors = [akTop, akRight]\r\n"
                       "      Caption = '&Apply the changes'\r\n"
                       "      Font.Charset = DEFAULT_CHARSET\r\n"
                       "      Font.Name = 'MS Sans Serif'\r\n      Font.Style = [fsBold]\r\n"
                       "      Default = True\r\n      OnClick = ButtonApplyClick\r\n    end\r\n"
                       "    object Memo%0:d: TMemo\r\n      Lines.Strings = (\r\n"
                       "        'The first line of it'\r\n        'and another one')\r\n"
                       "      Ratio = 0.75\r\n    end\r\n  end\r\n",
                       {i});
    return text + "end\r\n";
}

/// Pictures of a megabyte each.
std::string PictureForm(std::size_t size) {
    constexpr std::size_t bytesInRow = 32;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::mt19937 random(1);
    std::string text = "object MainForm: TMainForm\r\n";
    for (int i = 0; text.size() < size; ++i) {
        text += Format("  object Image%d: TImage\r\n    Picture.Data = {", {i});
        for (std::size_t row = 0; row < MB / bytesInRow; ++row) {
            text += "\r\n      ";
            for (std::size_t digit = 0; digit < 2 * bytesInRow; ++digit)
                text += digits[random() % digits.size()];
        }
        text += "}\r\n  end\r\n";
    }
    return text + "end\r\n";
}

/// The text forms of the form files in the folder, but for those that are damaged.
TFiles FolderForms() {
    const char* const named = std::getenv("TARN_FORMS"); // NOLINT(concurrency-mt-unsafe)
    const std::filesystem::path folder = named ? named : TARN_SHARED_FORMS;
    TFiles texts;
    if (!std::filesystem::is_directory(folder)) return texts;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        try {
            texts.push_back(Converted(LoadFileText(entry.path().string()), fkText));
        } catch (const Exception&) { // NOLINT(bugprone-empty-catch): it is left out
        }
    }
    return texts;
}

const TFiles& Texts(std::int64_t which) {
    static const TFiles forms[] = {{OrdinaryForm(20 * MB)}, {PictureForm(100 * MB)}, FolderForms()};
    return forms[which];
}

TFiles Binaries(const TFiles& texts) {
    TFiles binaries;
    for (const std::string& text : texts) binaries.push_back(Converted(text, fkBinary));
    return binaries;
}

std::size_t SizeOf(const TFiles& files) {
    std::size_t size = 0;
    for (const std::string& file : files) size += file.size();
    return size;
}

std::size_t ConvertAll(const TFiles& files, TFormFileKind to) {
    std::size_t size = 0;
    for (const std::string& file : files) size += Converted(file, to).size();
    return size;
}

std::size_t CopyAll(const TFiles& files) {
    for (const std::string& file : files) {
        std::string copy(file.size(), '\0');
        std::memcpy(copy.data(), file.data(), file.size());
        benchmark::DoNotOptimize(copy.data());
    }
    return files.size();
}

std::size_t GetLines(const TFiles& files) {
    std::size_t size = 0;
    for (const std::string& file : files) {
        std::istringstream stream(file);
        for (std::string line; std::getline(stream, line);) size += line.size();
    }
    return size;
}

/// Speeds count the bytes of the text, in either direction.
void RaceForms(benchmark::State& state, TFormFileKind to, std::size_t (*yardstick)(const TFiles&)) {
    const TFiles& texts = Texts(state.range(0));
    if (texts.empty()) return state.SkipWithError("there is no folder of forms");
    const TFiles binaries = Binaries(texts);
    const TFiles& input = to == fkText ? binaries : texts;
    Race(
        state, [&] { return ConvertAll(input, to); },
        [&] { return yardstick(to == fkText && yardstick == GetLines ? texts : input); });
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(SizeOf(texts)));
}

void Forms(benchmark::internal::Benchmark* bench) {
    bench->ArgName("ordinary/pictures/folder")->UseManualTime()->Unit(benchmark::kMillisecond);
    for (const int which : {0, 1, 2}) bench->Arg(which);
}

void TextToBinaryAgainstCopy(benchmark::State& state) {
    RaceForms(state, fkBinary, CopyAll);
}
BENCHMARK(TextToBinaryAgainstCopy)->Apply(Forms);

void TextToBinaryAgainstGetline(benchmark::State& state) {
    RaceForms(state, fkBinary, GetLines);
}
BENCHMARK(TextToBinaryAgainstGetline)->Apply(Forms);

void BinaryToTextAgainstCopy(benchmark::State& state) {
    RaceForms(state, fkText, CopyAll);
}
BENCHMARK(BinaryToTextAgainstCopy)->Apply(Forms);

void BinaryToTextAgainstGetline(benchmark::State& state) {
    RaceForms(state, fkText, GetLines);
}
BENCHMARK(BinaryToTextAgainstGetline)->Apply(Forms);

} // namespace
} // namespace tarn
