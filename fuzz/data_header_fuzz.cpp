// Reads any bytes as a data header with stored objects behind it: whatever they are, that ends well
// or with an error of the platform's. The same bytes as a description are written into headers and
// lines, which are read back.

#include "qsDataHndl.h"
#include "rtl/TMemoryStream.h"
#include "vcl/TComponent.h"

#include <cstdint>
#include <cstdlib>

namespace {

using namespace tarn;

class TSample : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 0;
    bool Enabled = false;
    double Ratio = 0;
    std::string Text;
};
constexpr TPropInfo SampleProps[] = {
    Published<&TSample::Size>("Size"), Published<&TSample::Enabled>("Enabled"),
    Published<&TSample::Ratio>("Ratio"), Published<&TSample::Text>("Text")};
constinit const TClassRecord TSample::ClassRecord{"TSample", &TPersistent::ClassRecord,
                                                  CreateObject<TSample>, SampleProps};

void Require(bool condition) {
    if (!condition) std::abort();
}

void LoadAnything(std::string_view bytes) {
    TMemoryStream stream;
    stream.WriteText(bytes);
    TSample first;
    TComponent second;
    TPersistent* const objects[] = {&first, &second};
    const auto load = [&](auto&& call) {
        stream.SetPosition(0);
        try {
            call();
            Require(stream.Position() <= stream.Size());
        } catch (const Exception&) {
            // An error is an answer, too.
        }
    };
    load([&] { LoadObjectData(objects, stream); });
    load([&] { LoadObjects(objects, stream); });
    load([&] { SkipObjectDescription(stream); });
    for (const auto format : {osfBin, osfResBin, osfExtBin, osfText})
        load([&] { SafeLoadObjects(objects, stream, format, false); });
}

/// What a text in one line is read back as.
std::string Flat(std::string_view text) {
    std::string flat;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isBreak = text[i] == '\r' || text[i] == '\n';
        if (text[i] == '\n' && i > 0 && text[i - 1] == '\r') continue;
        flat += isBreak ? ' ' : text[i];
    }
    return flat;
}

void RequireHeader(TStream& stream, TObjectStorageFormat format, std::string_view description) {
    stream.SetPosition(0);
    TObjectStorageFormat readFormat{};
    bool asResource = false;
    std::string read;
    ReadDataHeader(stream, readFormat, asResource, read);
    Require(readFormat == format && asResource == (format == osfBin) && read == description);
    Require(stream.Position() == stream.Size());
}

void WriteAndRead(std::string_view description) {
    constexpr std::size_t longest = 255;
    TMemoryStream binary;
    WriteBinDataHeader(binary, true, description);
    RequireHeader(binary, osfBin, description.substr(0, longest));

    const std::string flat = Flat(description);
    TMemoryStream text;
    WriteTextDataHeader(text, description);
    RequireHeader(text, osfText, flat.empty() ? flat : " " + flat);

    TMemoryStream line;
    WriteObjectDescription(TSample(), description, line);
    line.SetPosition(0);
    SkipObjectDescription(line);
    Require(line.Position() == line.Size());
    Require(flat.empty() || line.Text() == flat + "\r\n");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    LoadAnything(bytes);
    WriteAndRead(bytes);
    return 0;
}
