#include "rtl/SysUtils.h"

#include "rtl/FloatText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace tarn {

std::string_view ExceptionClassName(const std::exception& error) {
    const auto* known = dynamic_cast<const Exception*>(&error);
    return known ? known->ClassName() : "External exception";
}

// --- Format -----------------------------------------------------------------------------------

namespace {

/// One "%..." of a format text.
struct TPlaceholder {
    int Index = -1;
    bool Left = false;
    int Width = 0;
    int Precision = -1;
    char Type = 0;
};

class TFormatter {
public:
    TFormatter(std::string_view format, std::initializer_list<TVarRec> args)
        : FFormat(format), FArgs(args) {}

    std::string Run() {
        std::size_t at = 0;
        for (;;) {
            const std::size_t mark = FFormat.find('%', at);
            FResult.append(FFormat.substr(at, mark - at));
            if (mark == std::string_view::npos) return std::move(FResult);
            at = mark + 1;
            if (at < FFormat.size() && FFormat[at] == '%') {
                FResult += '%';
                ++at;
            } else
                Append(ReadPlaceholder(at));
        }
    }

private:
    int ReadNumber(std::size_t& at) const {
        int value = -1;
        const auto [end, error] =
            std::from_chars(FFormat.data() + at, FFormat.data() + FFormat.size(), value);
        if (error != std::errc()) return -1;
        at = static_cast<std::size_t>(end - FFormat.data());
        return value;
    }

    char Peek(std::size_t at) const { return at < FFormat.size() ? FFormat[at] : '\0'; }

    TPlaceholder ReadPlaceholder(std::size_t& at) const {
        TPlaceholder result;
        std::size_t next = at;
        if (Peek(at) >= '0' && Peek(at) <= '9') {
            const int number = ReadNumber(next);
            if (Peek(next) == ':') {
                result.Index = number;
                at = next + 1;
            }
        }
        if (Peek(at) == '-') {
            result.Left = true;
            ++at;
        }
        if (Peek(at) >= '0' && Peek(at) <= '9') result.Width = ReadNumber(at);
        if (Peek(at) == '.') result.Precision = ReadNumber(++at);
        result.Type = Peek(at++);
        return result;
    }

    [[noreturn]] void Refuse() const {
        throw EConvertError("format '" + std::string(FFormat) + "' does not fit its arguments");
    }

    void Append(const TPlaceholder& place) {
        if (place.Index >= 0) FNext = static_cast<std::size_t>(place.Index);
        if (FNext >= FArgs.size()) Refuse();
        std::string text = Render(place, *(FArgs.begin() + FNext++));
        const auto width = std::min<std::size_t>(static_cast<std::size_t>(place.Width), 4096);
        const std::string blanks(text.size() < width ? width - text.size() : 0, ' ');
        FResult += place.Left ? text + blanks : blanks + text;
    }

    std::string Render(const TPlaceholder& place, const TFormatArg& arg) const {
        switch (place.Type) {
        case 's':
            if (const auto* text = std::get_if<std::string_view>(&arg))
                return std::string(text->substr(0, static_cast<std::size_t>(place.Precision)));
            break;
        case 'd':
        case 'u':
        case 'x':
            if (const auto* number = std::get_if<std::int64_t>(&arg))
                return Integer(place, *number);
            break;
        case 'f':
            if (const auto* number = std::get_if<double>(&arg)) {
                return FloatToFixed(*number, place.Precision < 0 ? 2 : place.Precision);
            }
            break;
        default:
            break;
        }
        Refuse();
    }

    static std::string Integer(const TPlaceholder& place, std::int64_t number) {
        std::array<char, 32> buffer{};
        char* const last = buffer.data() + buffer.size();
        char* end = nullptr;
        if (place.Type == 'd') {
            end = std::to_chars(buffer.data(), last, number).ptr;
        } else {
            // A negative number shows its bits: 32 when they hold it, else 64.
            const bool narrow = number < 0 && number >= std::numeric_limits<std::int32_t>::min();
            const std::uint64_t bits =
                narrow ? static_cast<std::uint32_t>(number) : static_cast<std::uint64_t>(number);
            end = std::to_chars(buffer.data(), last, bits, place.Type == 'x' ? 16 : 10).ptr;
        }
        std::string digits = UpperCase({buffer.data(), end});
        const auto least = static_cast<std::size_t>(std::clamp(place.Precision, 0, 64));
        const std::size_t sign = digits.front() == '-' ? 1 : 0;
        if (digits.size() - sign < least) digits.insert(sign, least - (digits.size() - sign), '0');
        return digits;
    }

    std::string_view FFormat;
    std::initializer_list<TVarRec> FArgs;
    std::size_t FNext = 0;
    std::string FResult;
};

} // namespace

std::string Format(std::string_view format, std::initializer_list<TVarRec> args) {
    return TFormatter(format, args).Run();
}

// --- Comparing --------------------------------------------------------------------------------

namespace {

constexpr char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
constexpr char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

} // namespace

int CompareText(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto x = static_cast<unsigned char>(Lower(a[i]));
        const auto y = static_cast<unsigned char>(Lower(b[i]));
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

bool SameText(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CompareText(a, b) == 0;
}

bool IsValidIdent(std::string_view text) {
    const auto letter = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    };
    return !text.empty() && letter(text.front()) &&
           std::all_of(text.begin(), text.end(),
                       [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

std::string UpperCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), Upper);
    return result;
}

std::string LowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), Lower);
    return result;
}

std::string_view Trim(std::string_view text) {
    const auto blank = [](char c) { return static_cast<unsigned char>(c) <= 32; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

std::string IntToStr(std::int64_t value) {
    return std::to_string(value);
}

namespace {

/// The number that the whole text is, in the bits of T; false when it is none or needs more bits.
template <class T> bool ReadInteger(std::string_view text, T& value) {
    using TBits = std::make_unsigned_t<T>;
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    int base = 10;
    if (!text.empty() && text.front() == '$')
        base = 16, text.remove_prefix(1);
    else if (text.size() > 1 && text[0] == '0' && Lower(text[1]) == 'x')
        base = 16, text.remove_prefix(2);
    TBits bits = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bits, base);
    // Hexadecimal digits give the bits, decimal ones the number.
    constexpr auto most = static_cast<TBits>(std::numeric_limits<T>::max());
    const TBits limit = base == 16 ? std::numeric_limits<TBits>::max() : negative ? most + 1 : most;
    if (error != std::errc() || end != text.data() + text.size() || bits > limit) return false;
    value = static_cast<T>(negative ? TBits{0} - bits : bits);
    return true;
}

template <class T> T RequireInteger(std::string_view text) {
    T value = 0;
    if (!ReadInteger(text, value))
        throw EConvertError(Format("'%s' is not a valid integer value", {text}));
    return value;
}

} // namespace

std::int32_t StrToInt(std::string_view text) {
    return RequireInteger<std::int32_t>(text);
}

std::int64_t StrToInt64(std::string_view text) {
    return RequireInteger<std::int64_t>(text);
}

std::int32_t StrToIntDef(std::string_view text, std::int32_t defaultValue) {
    std::int32_t value = 0;
    return ReadInteger(text, value) ? value : defaultValue;
}

// --- File names -------------------------------------------------------------------------------

namespace {

std::size_t NameStart(std::string_view name) {
    const std::size_t separator = name.find_last_of("/\\");
    return separator == std::string_view::npos ? 0 : separator + 1;
}

} // namespace

std::string_view ExtractFilePath(std::string_view name) {
    return name.substr(0, NameStart(name));
}

std::string_view ExtractFileName(std::string_view name) {
    return name.substr(NameStart(name));
}

std::string_view ExtractFileExt(std::string_view name) {
    const std::string_view file = ExtractFileName(name);
    const std::size_t point = file.rfind('.');
    return point == std::string_view::npos ? std::string_view() : file.substr(point);
}

std::string ChangeFileExt(std::string_view name, std::string_view extension) {
    const std::string_view stem = name.substr(0, name.size() - ExtractFileExt(name).size());
    return std::string(stem) + std::string(extension);
}

} // namespace tarn
