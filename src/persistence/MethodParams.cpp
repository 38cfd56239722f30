#include "MethodParams.h"

#include "DataHandlingErrors.h"

#include "rtl/MethodInfo.h"

namespace tarn {
namespace {

constexpr struct {
    TParamFlag Flag;
    std::string_view Label;
} FlagLabels[] = {{pfVar, "var "},
                  {pfConst, "const "},
                  {pfOut, "out "},
                  {pfAddress, "address "},
                  {pfReference, "reference "}};

std::string_view TypeText(const TTypeInfo& type) {
    return type.Kind == tkUnknown ? "untyped" : type.TypeName();
}

std::string ParamText(const TMethodParam& param, std::string_view name) {
    std::string text;
    for (const auto& row : FlagLabels)
        if (param.Flags.Contains(row.Flag)) text += row.Label;
    text.append(name).append(":");
    return text.append(param.Flags.Contains(pfArray) ? " array of " : " ")
        .append(TypeText(*param.Type));
}

} // namespace

std::string GetMethodParams(const TTypeInfo& type) {
    if (!type.Signature) RaiseDataError(strUnsupportedKind);
    const TMethodSignature& signature = *type.Signature;
    std::string report;
    const auto line = [&report](std::string_view label, std::string_view text) {
        report.append(label).append(text).append(LineBreak);
    };
    line("Type Name: ", type.TypeName());
    line("Type Kind: ", "tkMethod");
    line("Method Kind: ", MethodKindNames[signature.Kind]);
    line("Number of parameters: ", std::to_string(signature.Params.size()));
    for (std::size_t i = 0; i < signature.Params.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        line("Param ", ParamText(signature.Params[i], type.Names.empty() ? number : type.Names[i]));
    }
    if (signature.Kind == mkFunction) line("Returns > ", TypeText(*signature.Result));
    return report;
}

} // namespace tarn
