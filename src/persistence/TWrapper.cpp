#include "TWrapper.h"

namespace tarn {
namespace {

// Without a setter, so that no stream can put another object in its place.
constexpr TPropInfo WrapperProps[] = {Published<&TWrapper::Instance>("Instance")};

} // namespace

constinit const TClassRecord TWrapper::ClassRecord{"TWrapper", &TComponent::ClassRecord, nullptr,
                                                   WrapperProps};

} // namespace tarn
