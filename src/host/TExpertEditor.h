#pragma once

#include "qsExpShrData.h"
#include "qsSpcEditor.h"

namespace tarn {

class TExpManager;

/// The settings editor of the manager. Its window's state is kept among the manager's settings
/// instead of an ini file.
class TExpertEditor : public TSpcEditorPro {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TSpcEditorPro::TSpcEditorPro;

    TExpManager* Manager = nullptr;

    void ReadFormSetting(std::string_view section, std::string_view ident, TStrings& data) override;
    void WriteFormSetting(std::string_view section, std::string_view ident,
                          const TStrings& data) override;
};

} // namespace tarn
