#include "ErrorOf.h"
#include "TObjectStorage.h"
#include "rtl/TStrings.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

struct TNoRecord {};

constexpr std::string_view FillNames[] = {"Items", "Filled"};
constexpr TMethodParam FillParams[] = {{&TypeInfoOf<TStrings*>, {pfReference}},
                                       {&TypeInfoOf<int>, {pfOut}}};
constexpr TMethodSignature FillSignature = {mkFunction, FillParams, &TypeInfoOf<bool>};
constexpr TTypeInfo FillEvent = MethodType("TFillEvent", FillSignature, FillNames);

TEST(MethodParams, ShowTheSignature) {
    const struct {
        const TTypeInfo& Type;
        std::string_view Name, Kind;
        std::vector<std::string_view> Params;
        std::string_view Result = {};
    } cases[] = {
        {TypeInfoOf<TNotifyEvent>, "TNotifyEvent", "mkProcedure", {"address Sender: TObject"}},
        {FillEvent,
         "TFillEvent",
         "mkFunction",
         {"reference Items: TStrings", "out Filled: Integer"},
         "Boolean"},
        {TypeInfoOf<TMethod<TStrings*()>>, "TMethod", "mkFunction", {}, "TStrings"},
        {TypeInfoOf<TMethod<TNoRecord(int, int&, const double&, std::string_view)>>,
         "TMethod",
         "mkFunction",
         {"1: Integer", "var 2: Integer", "const 3: Double", "const 4: String"},
         "untyped"},
        {TypeInfoOf<TMethod<void(const TPersistent&, const TObject*, TStrings*&, const int*,
                                 const TNoRecord&)>>,
         "TMethod",
         "mkProcedure",
         {"const reference 1: TPersistent", "const address 2: TObject", "var address 3: TStrings",
          "const address 4: Integer", "const 5: untyped"}},
        {TypeInfoOf<TMethod<void(std::span<int>, std::span<const char, 4>, std::vector<TStrings*>&,
                                 const std::vector<bool>&, std::vector<std::string_view>)>>,
         "TMethod",
         "mkProcedure",
         {"var 1: array of Integer", "const 2: array of Char", "var address 3: array of TStrings",
          "const 4: array of Boolean", "const 5: array of String"}},
    };
    for (const auto& c : cases) {
        std::string report = Format("Type Name: %s\r\nType Kind: tkMethod\r\nMethod Kind: %s\r\n"
                                    "Number of parameters: %d\r\n",
                                    {c.Name, c.Kind, c.Params.size()});
        for (const std::string_view param : c.Params) report += Format("Param %s\r\n", {param});
        if (!c.Result.empty()) report += Format("Returns > %s\r\n", {c.Result});
        EXPECT_EQ(TObjectStorage::GetMethodParams(c.Type), report);
    }
    EXPECT_EQ(ErrorOf([] { TObjectStorage::GetMethodParams(TypeInfoOf<int>); }),
              "EDataHandlingError: Unsupported variable type.");
}

} // namespace
} // namespace tarn
