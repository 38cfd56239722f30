#pragma once

#include "rtl/SysUtils.h"
#include "rtl/TStream.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

struct TInvalidGraphicTag {
    static constexpr std::string_view Name = "EInvalidGraphic";
};
/// Bytes that are no picture of the format, or a format that is not known.
using EInvalidGraphic = TNamedException<TInvalidGraphicTag>;

struct TGraphicSize {
    int Width = 0;
    int Height = 0;
};

/// A picture in the format of its class: the bytes of a file, kept exactly as they were read, and
/// the size that its header gives. Nothing is painted here; a front end knows the formats.
class TGraphic : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    bool Empty() const { return FBytes.empty(); }
    int Width() const { return FSize.Width; } ///< pixels; 0 when empty
    int Height() const { return FSize.Height; }
    const std::string& Bytes() const { return FBytes; }
    /// Takes the bytes of a file, none to be empty. Raises EInvalidGraphic, which leaves the
    /// picture as it was, and so do the other ways to load one.
    void SetBytes(std::string bytes);

    /// Reads the rest of the stream.
    void LoadFromStream(TStream& stream);
    void SaveToStream(TStream& stream) const;

    /// Copies a picture of the same class, but for its OnChange; none, null, empties it.
    void Assign(const TPersistent* source) override;

    TNotifyEvent OnChange;

protected:
    /// Checks the header of a file, which is not empty. Raises EInvalidGraphic.
    virtual TGraphicSize SizeOf(std::string_view file) const = 0;
    /// Stores the bytes as "Data"; an empty picture stores nothing.
    void DefineProperties(TFiler& filer) override;

private:
    void Take(std::string bytes, TGraphicSize size);

    std::string FBytes;
    TGraphicSize FSize;
};

/// A Windows bitmap file: Microsoft's "Bitmap Storage", with any of its information headers.
class TBitmap : public TGraphic {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

protected:
    TGraphicSize SizeOf(std::string_view file) const override;
};

/// A PNG file: W3C "Portable Network Graphics (PNG) Specification". The header alone is checked.
class TPngGraphic : public TGraphic {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

protected:
    TGraphicSize SizeOf(std::string_view file) const override;
};

/// A format that pictures can have.
struct TGraphicFormat {
    const TClassRecord* Class;        ///< of a TGraphic
    std::string_view Extension;       ///< of its files, with the point, lower case
    std::string_view Description;     ///< in file dialogs
    std::string_view ClipboardFormat; ///< what the clipboard calls it

    std::unique_ptr<TGraphic> New() const; ///< an empty picture
};
std::span<const TGraphicFormat> GraphicFormats();
/// The format of a picture. Raises EInvalidGraphic for a class that is not in the table.
const TGraphicFormat& FormatOf(const TGraphic& graphic);
/// The filter of a file dialog for pictures: all formats in one line, then each.
std::string GraphicFilter();

/// A place for a picture of any format.
class TPicture : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TGraphic* Graphic() const { return FGraphic.get(); } ///< null when there is none
    void SetGraphic(const TGraphic* value);              ///< a copy is kept; null is none
    void Clear() { SetGraphic(nullptr); }
    bool Empty() const { return !FGraphic || FGraphic->Empty(); }
    int Width() const { return FGraphic ? FGraphic->Width() : 0; }
    int Height() const { return FGraphic ? FGraphic->Height() : 0; }

    // The format follows from the extension. Raise EInvalidGraphic for one that is not known, for
    // what is no such file, and for a picture that is empty or of another format; errors of the
    // file are EInOutError. A failed load leaves the picture as it was, a failed save the file.
    void LoadFromFile(std::string_view fileName);
    void SaveToFile(std::string_view fileName) const;

    /// Copies a picture, or a graphic, into this one; null clears it.
    void Assign(const TPersistent* source) override;

    TNotifyEvent OnChange;

protected:
    /// Copies the graphic into one of its class.
    void AssignTo(TPersistent& dest) const override;
    /// Stores the class name as a short string, the number of bytes in 32 bits, the lowest byte
    /// first, and the bytes as "Data"; a picture that is empty stores nothing.
    void DefineProperties(TFiler& filer) override;

private:
    void Take(std::unique_ptr<TGraphic> graphic);
    void GraphicChanged(TObject*) { Changed(); }
    void Changed();
    void ReadData(TStream& stream);
    void WriteData(TStream& stream) const;

    std::unique_ptr<TGraphic> FGraphic;
};

} // namespace tarn
