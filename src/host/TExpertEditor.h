#pragma once

#include "qsExpShrData.h"
#include "qsSpcEdPro.h"

namespace tarn {

class TExpManager;

/// The settings editor of the manager. Its window's state is kept among the manager's settings
/// instead of an INI file.
class TExpertEditor : public TSpcEditorPro {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TSpcEditorPro::TSpcEditorPro;

    TExpManager* Manager = nullptr;

    void MakeForm() override;
    void ReadFormSetting(std::string_view iniFileName, std::string_view section,
                         TStrings& data) override;
    void WriteFormSetting(std::string_view iniFileName, std::string_view section,
                          const TStrings& data) override;

protected:
    void FillClone(TPersistent& clone) override;
};

} // namespace tarn
