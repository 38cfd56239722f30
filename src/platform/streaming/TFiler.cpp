#include "streaming/TFiler.h"

#include "rtl/SysUtils.h"

#include <map>

namespace tarn {
namespace {

struct TLessText {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return CompareText(a, b) < 0; }
};

struct TIntegerConsts {
    TIdentToInt IdentToInt;
    TIntToIdent IntToIdent;
};

auto& Consts() {
    static std::map<std::string, TIntegerConsts, TLessText> consts;
    return consts;
}

const TIntegerConsts* ConstsOf(const TTypeInfo& type) {
    const auto found = Consts().find(type.Name);
    return found == Consts().end() ? nullptr : &found->second;
}

} // namespace

void RegisterIntegerConsts(const TTypeInfo& type, TIdentToInt identToInt, TIntToIdent intToIdent) {
    Consts().insert_or_assign(std::string(type.Name), TIntegerConsts{identToInt, intToIdent});
}

void UnRegisterIntegerConsts(const TTypeInfo& type) {
    const auto found = Consts().find(type.Name);
    if (found != Consts().end()) Consts().erase(found);
}

bool IdentToInteger(const TTypeInfo& type, std::string_view ident, std::int32_t& value) {
    const TIntegerConsts* const consts = ConstsOf(type);
    return consts && consts->IdentToInt(ident, value);
}

bool IntegerToIdent(const TTypeInfo& type, std::int32_t value, std::string& ident) {
    const TIntegerConsts* const consts = ConstsOf(type);
    return consts && consts->IntToIdent(value, ident);
}

} // namespace tarn
