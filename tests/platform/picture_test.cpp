#include "ErrorOf.h"
#include "TTestFolder.h"
#include "os/portable/TPortableOS.h"
#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"
#include "vcl/Clipbrd.h"
#include "vcl/Dialogs.h"
#include "vcl/Forms.h"
#include "vcl/TImage.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tarn {
namespace {

/// The number's bytes, the lowest first.
std::string Bytes(std::uint64_t value, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return bytes;
}

struct TBitmapFields {
    std::uint32_t HeaderSize = 40, Width = 3, Height = 2, Planes = 1, Bits = 24, Compression = 0;
    std::size_t Pixels = 24; ///< bytes
};

std::string BitmapFile(const TBitmapFields& f = {}) {
    std::string header = Bytes(f.HeaderSize, 4);
    const int fieldSize = f.HeaderSize == 12 ? 2 : 4;
    header += Bytes(f.Width, fieldSize) + Bytes(f.Height, fieldSize);
    header += Bytes(f.Planes, 2) + Bytes(f.Bits, 2) + Bytes(f.Compression, 4);
    header.resize(std::min<std::size_t>(f.HeaderSize, 124));
    return "BM" + Bytes(0, 8) + Bytes(static_cast<std::uint32_t>(14 + header.size()), 4) + header +
           std::string(f.Pixels, '\x5A');
}

constexpr std::string_view
    PngBytes("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\x07\0\0\x01\x02\x08\2\0\0\0crc.", 33);

/// "WIDTHxHEIGHT" of a file, or the error that refuses it.
template <class T> std::string SizeOf(const std::string& file) {
    T graphic;
    const std::string error = ErrorOf([&] { graphic.SetBytes(file); });
    EXPECT_EQ(graphic.Bytes(), error.empty() ? file : "");
    return error.empty() ? Format("%dx%d", {graphic.Width(), graphic.Height()}) : error;
}

TEST(Pictures, HeadersAreChecked) {
    const std::string pngFile(PngBytes);
    constexpr std::uint32_t minusTwo = 0xFFFFFFFE, least = 0x80000000, most = 0x7FFFFFFF;
    const std::string bitmap = BitmapFile(), refused = "EInvalidGraphic: this is no ";
    const struct {
        std::string File, Result;
    } bitmaps[] = {
        {"", "0x0"},
        {bitmap, "3x2"},
        {bitmap + "more", "3x2"},
        {BitmapFile({.Height = minusTwo}), "3x2"},
        {BitmapFile({.HeaderSize = 124}), "3x2"},
        {BitmapFile({.HeaderSize = 12}), "3x2"},
        {BitmapFile({.Width = 33, .Bits = 1, .Pixels = 16}), "33x2"},
        {BitmapFile({.Width = 33, .Bits = 1, .Pixels = 15}),
         refused + "bitmap file: it is cut off"},
        {BitmapFile({.Bits = 0, .Compression = 5, .Pixels = 0}), "3x2"},
        {BitmapFile({.Bits = 7}), refused + "bitmap file: it has 7 bits a pixel"},
        {BitmapFile({.Planes = 2}), refused + "bitmap file: it has 2 planes"},
        {BitmapFile({.Width = 0}), refused + "bitmap file: its size is 0 x 2"},
        {BitmapFile({.Width = minusTwo}), refused + "bitmap file: its size is -2 x 2"},
        {BitmapFile({.Height = least}), refused + "bitmap file: its size is 3 x -2147483648"},
        {BitmapFile({.Width = most, .Height = most}), refused + "bitmap file: it is cut off"},
        {BitmapFile({.HeaderSize = 39}), refused + "bitmap file: its header has 39 bytes"},
        {BitmapFile({.HeaderSize = most}), refused + "bitmap file: it is cut off"},
        {bitmap.substr(0, 25), refused + "bitmap file: it is cut off"},
        {bitmap.substr(0, bitmap.size() - 1), refused + "bitmap file: it is cut off"},
        {pngFile, refused + "bitmap file: it does not begin with BM"},
    };
    for (const auto& c : bitmaps) EXPECT_EQ(SizeOf<TBitmap>(c.File), c.Result);
    std::string empty = pngFile;
    empty[19] = 0;
    EXPECT_EQ(SizeOf<TPngGraphic>(pngFile), "7x258");
    EXPECT_EQ(SizeOf<TPngGraphic>(empty), refused + "PNG file: its size is 0 x 258");
    EXPECT_EQ(SizeOf<TPngGraphic>(pngFile.substr(0, 32)), refused + "PNG file: it is cut off");
    EXPECT_EQ(SizeOf<TPngGraphic>(bitmap), refused + "PNG file: its header is missing");
}

TEST(Pictures, FilesClipboardAndCopies) {
    TPortableOS os;
    TOperatingSystem* const before = InstallOS(&os);
    TTestFolder folder;
    const std::string pngFile(PngBytes);
    const std::string bmp = folder.File("a.BMP"), png = folder.File("a.png");
    SaveFileText(bmp, BitmapFile());
    SaveFileText(png, pngFile);
    SaveFileText(folder.File("empty.bmp"), "");
    TImage image;
    int changes = 0;
    auto count = [&](TObject*) { ++changes; };
    image.OnChange = TNotifyEvent::Calling(count);
    TPicture& picture = image.Picture();
    picture.LoadFromFile(bmp);
    const auto ignored = [&](std::string_view name) {
        return ErrorOf([&] { picture.LoadFromFile(folder.File(name)); });
    };
    EXPECT_EQ(ignored("a.gif"),
              "EInvalidGraphic: there is no picture format with the extension '.gif'");
    EXPECT_NE(ignored("none.bmp"), "");
    EXPECT_EQ(ignored("empty.bmp"), "EInvalidGraphic: " + folder.File("empty.bmp") + " is empty");
    EXPECT_EQ(ErrorOf([&] { picture.SaveToFile(png); }),
              "EInvalidGraphic: the picture is saved as .bmp, not as " + png);
    EXPECT_EQ(LoadFileText(png), pngFile);
    picture.SaveToFile(folder.File("b.bmp"));
    EXPECT_EQ(LoadFileText(folder.File("b.bmp")), BitmapFile());
    EXPECT_EQ(changes, 1);

    // A text and a picture take each other's place on the clipboard.
    Clipboard().SetAsText("text");
    EXPECT_FALSE(Clipboard().HasPicture() || Clipboard().GetPicture(picture));
    Clipboard().SetPicture(picture);
    TPicture copy;
    copy.LoadFromFile(png);
    EXPECT_TRUE(Clipboard().HasPicture() && !Clipboard().HasText() && Clipboard().GetPicture(copy));
    EXPECT_EQ(copy.Graphic()->Bytes(), BitmapFile());
    Clipboard().SetAsText("");
    EXPECT_FALSE(Clipboard().HasPicture());
    Clipboard().SetPicture(TPicture());
    EXPECT_FALSE(Clipboard().HasText());

    TBitmap bitmap;
    TPngGraphic graphic;
    graphic.SetBytes(pngFile);
    bitmap.Assign(&picture);
    EXPECT_EQ(bitmap.Bytes(), BitmapFile());
    EXPECT_THROW(bitmap.Assign(&graphic), EConvertError);
    picture.Assign(&graphic);
    EXPECT_THROW(bitmap.Assign(&picture), EConvertError);
    EXPECT_EQ(picture.Height(), 258);
    picture.Assign(&picture);
    picture.Graphic()->SetBytes({});
    EXPECT_TRUE(picture.Empty());
    EXPECT_EQ(ErrorOf([&] { picture.SaveToFile(png); }),
              "EInvalidGraphic: there is no picture to save");
    picture.Clear();
    picture.Clear();
    bitmap.Assign(&picture);
    EXPECT_TRUE(bitmap.Empty());
    EXPECT_EQ(changes, 5);
    EXPECT_EQ(GraphicFilter(), "All (*.bmp;*.png)|*.bmp;*.png|Bitmaps (*.bmp)|*.bmp|"
                               "Portable Network Graphics (*.png)|*.png");
    InstallOS(before);
}

TEST(Dialogs, AskForFilesAndTexts) {
    TPortableOS os;
    TOperatingSystem* const before = InstallOS(&os);
    TTestFolder folder;
    const std::string there = folder.File("there.txt"), fresh = folder.File("fresh");
    SaveFileText(there, "");
    TSaveDialog save;
    save.Title = "Save";
    save.DefaultExt = "txt";
    save.FileName = "former";
    EXPECT_FALSE(save.Execute());
    EXPECT_EQ(save.FileName, "former");
    // Not to be overwritten, then another one.
    for (const std::string& file : {folder.File("there"), fresh}) os.QueueFile(file);
    os.QueueAnswer(IDNO);
    EXPECT_TRUE(save.Execute());
    EXPECT_EQ(save.FileName, fresh + ".txt");
    os.QueueFile(there);
    os.QueueAnswer(IDYES);
    EXPECT_TRUE(save.Execute());
    TOpenDialog open;
    os.QueueFile(there);
    EXPECT_TRUE(open.Execute());
    std::string value = "old";
    EXPECT_FALSE(InputQuery("Add", "Line:", value));
    EXPECT_EQ(value, "old");
    os.QueueInput("");
    EXPECT_TRUE(InputQuery("Add", "Line:", value));
    EXPECT_EQ(value, "");
    std::string shown;
    for (const auto& dialog : os.Dialogs())
        shown += dialog.Caption + ":" + dialog.Text + ":" + IntToStr(dialog.Answer) + "|";
    EXPECT_EQ(shown, "Save::2|Save:" + folder.File("there") + ":1|Save:" + there +
                         " exists already. Replace it?:7|Save:" + fresh + ":1|Save:" + there +
                         ":1|Save:" + there + " exists already. Replace it?:6|:" + there +
                         ":1|Add::2|Add::1|");

    // Somebody at a terminal.
    std::istringstream in("gone\nthere.txt\n\n \nnew\n");
    std::ostringstream out;
    TConsoleDialogs console(in, out, true);
    os.SetConsole(&console);
    open.FileName = folder.File("x");
    EXPECT_TRUE(open.Execute());
    EXPECT_EQ(open.FileName, there);
    EXPECT_FALSE(open.Execute());
    value = "kept";
    EXPECT_TRUE(InputQuery("Add", "Line", value));
    EXPECT_EQ(value, "kept");
    EXPECT_TRUE(InputQuery("Add", "Line", value));
    EXPECT_EQ(value, "new");
    EXPECT_FALSE(InputQuery("Add", "Line", value));
    EXPECT_EQ(out.str(), "File, from " + folder.File("x") +
                             " (an empty line cancels): gone is no file\nFile, from " +
                             folder.File("x") + " (an empty line cancels): File, from " + there +
                             " (an empty line cancels): cancelled\nAdd: Line [kept]: Add: Line "
                             "[kept]: Add: Line [new]: cancelled\n");
    InstallOS(before);
}

} // namespace
} // namespace tarn
