#pragma once

#include <string>

namespace tarn {

struct TTypeInfo;

/// A method type's signature for people who look for a fault, in lines ended by CR LF:
///
///     Type Name: TNotifyEvent
///     Type Kind: tkMethod
///     Method Kind: mkProcedure
///     Number of parameters: 1
///     Param address Sender: TObject
///
/// A parameter has its flags in front (var, const, out, address, reference) and "array of" before
/// the type of its elements; without a known name it has its number, from 1. A function ends with
/// "Returns > TYPE". A type without a type record is "untyped". Raises EDataHandlingError 50523 for
/// a type that is no method.
std::string GetMethodParams(const TTypeInfo& type);

} // namespace tarn
