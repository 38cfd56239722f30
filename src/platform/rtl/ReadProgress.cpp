#include "rtl/ReadProgress.h"

#include <utility>

namespace tarn {
namespace {

thread_local const TScopedReadProgress::TStep* Watching = nullptr;

} // namespace

TScopedReadProgress::TScopedReadProgress(TStep step)
    : FStep(std::move(step)), FBefore(std::exchange(Watching, &FStep)) {}

TScopedReadProgress::~TScopedReadProgress() {
    Watching = FBefore;
}

const TScopedReadProgress::TStep* TScopedReadProgress::Current() {
    return Watching;
}

} // namespace tarn
