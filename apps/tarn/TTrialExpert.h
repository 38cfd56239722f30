#pragma once

#include "TCustomExpert.h"

#include <string>
#include <string_view>

namespace tarn {

/// An expert with one command, TrialItem, that fails where it is told to: scripts show with it what
/// becomes of an error that an expert lets out.
class TTrialExpert : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TTrialExpert() { Pass("create"); }
    void BeforeDestruction() override { Pass("destroy"); }
    void Init(TGetItemData getItemData) override;
    void Load(bool) override { Pass("load"); }
    void MenuNotification(TMenuItem*, TExpMenuItemData*) override { Pass("menu"); }

    /// The place where it fails, for example "init"; empty or any other word for none. It is there
    /// before the expert is, which is made without arguments.
    static inline std::string FailsIn;

private:
    void Run(TObject*) { Pass("command"); }
    void Update(TObject*) { Pass("update"); }
    /// Raises Exception in the place where it is to fail.
    static void Pass(std::string_view place);
};

/// Registers the class in the last slot, as "TrialExpert".
void RegisterTrialExpert();

} // namespace tarn
