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

} // namespace tarn
