#include "TCustomExpert.h"

namespace tarn {
namespace {

constexpr TInterfaceEntry ExpertInterfaces[] = {Implements<TCustomExpert, ICustomExpert>()};

} // namespace

constinit const TClassRecord TCustomExpert::ClassRecord{
    "TCustomExpert", &TPersistent::ClassRecord, CreateObject<TCustomExpert>, {}, ExpertInterfaces};

void TCustomExpert::Init(TGetItemData) {}
void TCustomExpert::Load(bool) {}
void TCustomExpert::MenuNotification(TMenuItem*, TExpMenuItemData*) {}

void EnableCommand(TObject* sender, bool enabled) {
    if (auto* const item = ClassCast<TMenuItem>(sender))
        item->SetEnabled(enabled);
    else if (auto* const action = ClassCast<TAction>(sender))
        action->SetEnabled(enabled);
}

} // namespace tarn
