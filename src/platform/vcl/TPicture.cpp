#include "vcl/TPicture.h"

#include "rtl/SafeFile.h"
#include "streaming/TFiler.h"

#include <algorithm>
#include <limits>

namespace tarn {

constinit const TClassRecord TGraphic::ClassRecord{"TGraphic", &TPersistent::ClassRecord};
constinit const TClassRecord TBitmap::ClassRecord{"TBitmap", &TGraphic::ClassRecord,
                                                  CreateObject<TBitmap>};
constinit const TClassRecord TPngGraphic::ClassRecord{"TPngGraphic", &TGraphic::ClassRecord,
                                                      CreateObject<TPngGraphic>};
constinit const TClassRecord TPicture::ClassRecord{"TPicture", &TPersistent::ClassRecord,
                                                   CreateObject<TPicture>};

// --- TGraphic ---------------------------------------------------------------------------------

void TGraphic::Take(std::string bytes, TGraphicSize size) {
    FBytes = std::move(bytes);
    FSize = size;
    if (const TNotifyEvent handler = OnChange) handler(this);
}

void TGraphic::SetBytes(std::string bytes) {
    const TGraphicSize size = bytes.empty() ? TGraphicSize{} : SizeOf(bytes);
    Take(std::move(bytes), size);
}

namespace {

std::int64_t BytesLeft(TStream& stream) {
    return std::max<std::int64_t>(stream.Size() - stream.Position(), 0);
}

/// \param count no more than the stream has left
std::string ReadBytes(TStream& stream, std::int64_t count) {
    std::string bytes(static_cast<std::size_t>(count), '\0');
    stream.ReadBuffer(bytes.data(), count);
    return bytes;
}

} // namespace

void TGraphic::LoadFromStream(TStream& stream) {
    SetBytes(ReadBytes(stream, BytesLeft(stream)));
}

void TGraphic::SaveToStream(TStream& stream) const {
    stream.WriteText(FBytes);
}

void TGraphic::Assign(const TPersistent* source) {
    if (!source) return Take({}, {});
    const auto* const graphic = dynamic_cast<const TGraphic*>(source);
    if (!graphic || &graphic->ClassType() != &ClassType()) return TPersistent::Assign(source);
    Take(graphic->FBytes, graphic->FSize);
}

void TGraphic::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Data", [this](TStream& stream) { LoadFromStream(stream); },
        [this](TStream& stream) { SaveToStream(stream); }, !Empty());
}

// --- Formats ----------------------------------------------------------------------------------

namespace {

std::uint32_t LittleEndian(std::string_view bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

std::uint32_t BigEndian(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

[[noreturn]] void Refuse(std::string_view format, std::string_view reason) {
    throw EInvalidGraphic(Format("this is no %s: %s", {format, reason}));
}

/// The part of a bitmap's header that both of its kinds have.
struct TBitmapHeader {
    std::int64_t Width, Height; ///< a height below 0 says that the rows begin at the top
    std::uint32_t Planes, BitCount, Compression;
};

constexpr std::size_t BitmapFileHeaderSize = 14, BitmapCoreHeaderSize = 12,
                      BitmapInfoHeaderSize = 40;

TBitmapHeader ReadBitmapHeader(std::string_view file) {
    constexpr std::size_t at = BitmapFileHeaderSize + 4;
    const auto signedField = [file](std::size_t place) {
        return static_cast<std::int32_t>(LittleEndian(file, place, 4));
    };
    if (LittleEndian(file, BitmapFileHeaderSize, 4) == BitmapCoreHeaderSize)
        return {LittleEndian(file, at, 2), LittleEndian(file, at + 2, 2),
                LittleEndian(file, at + 4, 2), LittleEndian(file, at + 6, 2), 0};
    return {signedField(at), signedField(at + 4), LittleEndian(file, at + 8, 2),
            LittleEndian(file, at + 10, 2), LittleEndian(file, at + 12, 4)};
}

bool IsBitCount(std::uint32_t bits) {
    constexpr std::uint32_t counts[] = {1, 4, 8, 16, 24, 32};
    return std::find(std::begin(counts), std::end(counts), bits) != std::end(counts);
}

} // namespace

TGraphicSize TBitmap::SizeOf(std::string_view file) const {
    constexpr std::string_view name = "bitmap file";
    if (!file.starts_with("BM")) Refuse(name, "it does not begin with BM");
    const std::string_view cutOff = "it is cut off";
    if (file.size() < BitmapFileHeaderSize + BitmapCoreHeaderSize) Refuse(name, cutOff);
    const std::size_t headerSize = LittleEndian(file, BitmapFileHeaderSize, 4);
    if (headerSize != BitmapCoreHeaderSize && headerSize < BitmapInfoHeaderSize)
        Refuse(name, Format("its header has %d bytes", {headerSize}));
    if (headerSize > file.size() - BitmapFileHeaderSize) Refuse(name, cutOff);

    const TBitmapHeader header = ReadBitmapHeader(file);
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    const std::int64_t height = header.Height < 0 ? -header.Height : header.Height;
    if (header.Width <= 0 || height == 0 || height > most)
        Refuse(name, Format("its size is %d x %d", {header.Width, header.Height}));
    if (header.Planes != 1) Refuse(name, Format("it has %d planes", {header.Planes}));
    // What is compressed tells its size in no way that is the same for all of it.
    constexpr std::uint32_t uncompressed = 0;
    if (header.Compression == uncompressed) {
        if (!IsBitCount(header.BitCount))
            Refuse(name, Format("it has %d bits a pixel", {header.BitCount}));
        const std::int64_t rowSize = (header.Width * header.BitCount + 31) / 32 * 4;
        const std::int64_t room =
            static_cast<std::int64_t>(file.size()) - std::int64_t{LittleEndian(file, 10, 4)};
        if (room < 0 || room / rowSize < height) Refuse(name, cutOff);
    }
    return {static_cast<int>(header.Width), static_cast<int>(height)};
}

TGraphicSize TPngGraphic::SizeOf(std::string_view file) const {
    constexpr std::string_view name = "PNG file";
    // The mark, then the chunk of 13 bytes that must come first.
    constexpr std::string_view start("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR", 16);
    constexpr std::size_t headerEnd = 33;
    constexpr std::uint32_t most = std::numeric_limits<std::int32_t>::max();
    if (!file.starts_with(start)) Refuse(name, "its header is missing");
    if (file.size() < headerEnd) Refuse(name, "it is cut off");
    const std::uint32_t width = BigEndian(file, 16), height = BigEndian(file, 20);
    if (width == 0 || height == 0 || width > most || height > most)
        Refuse(name, Format("its size is %u x %u", {width, height}));
    return {static_cast<int>(width), static_cast<int>(height)};
}

namespace {

constexpr TGraphicFormat Formats[] = {
    {&TBitmap::ClassRecord, ".bmp", "Bitmaps", "image/bmp"},
    {&TPngGraphic::ClassRecord, ".png", "Portable Network Graphics", "image/png"},
};

template <class F>
const TGraphicFormat& FindFormat(F&& matches, std::string_view what, std::string_view value) {
    const auto* const found = std::find_if(std::begin(Formats), std::end(Formats), matches);
    if (found == std::end(Formats))
        throw EInvalidGraphic(Format("there is no picture format with the %s '%s'", {what, value}));
    return *found;
}

const TGraphicFormat& FormatOfClass(std::string_view className) {
    return FindFormat(
        [&](const TGraphicFormat& format) { return SameText(format.Class->Name, className); },
        "class", className);
}

const TGraphicFormat& FormatOfFile(std::string_view fileName) {
    const std::string_view extension = ExtractFileExt(fileName);
    return FindFormat(
        [&](const TGraphicFormat& format) { return SameText(format.Extension, extension); },
        "extension", extension);
}

} // namespace

std::unique_ptr<TGraphic> TGraphicFormat::New() const {
    return std::unique_ptr<TGraphic>(static_cast<TGraphic*>(Class->Create().release()));
}

std::span<const TGraphicFormat> GraphicFormats() {
    return Formats;
}

const TGraphicFormat& FormatOf(const TGraphic& graphic) {
    return FormatOfClass(graphic.ClassName());
}

std::string GraphicFilter() {
    std::string all, each;
    for (const TGraphicFormat& format : Formats) {
        const std::string pattern = "*" + std::string(format.Extension);
        all += (all.empty() ? "" : ";") + pattern;
        each += Format("|%s (%s)|%s", {format.Description, pattern, pattern});
    }
    return Format("All (%s)|%s", {all, all}) + each;
}

// --- TPicture ---------------------------------------------------------------------------------

void TPicture::Take(std::unique_ptr<TGraphic> graphic) {
    if (!graphic && !FGraphic) return;
    FGraphic = std::move(graphic);
    if (FGraphic) FGraphic->OnChange = TNotifyEvent::Of<&TPicture::GraphicChanged>(this);
    Changed();
}

void TPicture::Changed() {
    if (const TNotifyEvent handler = OnChange) handler(this);
}

void TPicture::SetGraphic(const TGraphic* value) {
    std::unique_ptr<TGraphic> copy;
    if (value) {
        copy = FormatOf(*value).New();
        copy->Assign(value);
    }
    Take(std::move(copy));
}

void TPicture::LoadFromFile(std::string_view fileName) {
    std::unique_ptr<TGraphic> graphic = FormatOfFile(fileName).New();
    std::string bytes = LoadFileText(fileName);
    if (bytes.empty()) throw EInvalidGraphic(Format("%s is empty", {fileName}));
    graphic->SetBytes(std::move(bytes));
    Take(std::move(graphic));
}

void TPicture::SaveToFile(std::string_view fileName) const {
    if (Empty()) throw EInvalidGraphic("there is no picture to save");
    const TGraphicFormat& format = FormatOf(*FGraphic);
    if (&FormatOfFile(fileName) != &format)
        throw EInvalidGraphic(
            Format("the picture is saved as %s, not as %s", {format.Extension, fileName}));
    SaveFileText(fileName, FGraphic->Bytes());
}

void TPicture::Assign(const TPersistent* source) {
    const auto* const graphic = dynamic_cast<const TGraphic*>(source);
    const auto* const picture = dynamic_cast<const TPicture*>(source);
    if (source && !graphic && !picture) return TPersistent::Assign(source);
    SetGraphic(picture ? picture->Graphic() : graphic);
}

void TPicture::AssignTo(TPersistent& dest) const {
    if (auto* const graphic = dynamic_cast<TGraphic*>(&dest);
        graphic && (!FGraphic || &FGraphic->ClassType() == &graphic->ClassType()))
        return graphic->Assign(FGraphic.get());
    TPersistent::AssignTo(dest);
}

void TPicture::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    filer.DefineBinaryProperty(
        "Data", [this](TStream& stream) { ReadData(stream); },
        [this](TStream& stream) { WriteData(stream); }, !Empty());
}

void TPicture::ReadData(TStream& stream) {
    const auto read = [&stream](std::uint32_t count) {
        if (count > BytesLeft(stream)) throw EInvalidGraphic("a stored picture is cut off");
        return ReadBytes(stream, count);
    };
    const auto nameSize = static_cast<unsigned char>(read(1)[0]);
    std::unique_ptr<TGraphic> graphic = FormatOfClass(read(nameSize)).New();
    graphic->SetBytes(read(LittleEndian(read(4), 0, 4)));
    Take(std::move(graphic));
}

void TPicture::WriteData(TStream& stream) const {
    const std::string& bytes = FGraphic->Bytes();
    const std::string_view name = FGraphic->ClassName();
    std::string header(1, static_cast<char>(name.size()));
    header += name;
    for (int shift = 0; shift < 32; shift += 8)
        header += static_cast<char>(bytes.size() >> shift & 0xFF);
    stream.WriteText(header);
    stream.WriteText(bytes);
}

} // namespace tarn
