#pragma once

#include "rtl/SysUtils.h"
#include "streaming/TFormTree.h"

#include <string>
#include <string_view>

namespace tarn {

struct TFormErrorTag {
    static constexpr std::string_view Name = "EFormError";
};
/// A form file that is none, a path that leads nowhere, a change that does not fit.
using EFormError = TNamedException<TFormErrorTag>;

// Paths lead to anything in a form, whatever its classes:
//   MainForm.Panel1.Edit1       an object; the name of the root may be left out
//   Panel1.Font.Name            a property, its name dotted as in the file
//   StatusBar1.Panels[1].Width  a property of an item of a collection
//   Memo1.Lines.Strings[3]      a value in a list
//   Panel1[0]                   a child object, for those without a name
// Names are compared without case, indexes count from 0. Where several forms follow each other the
// name of the root chooses one; without it the first one is meant. The empty path is its root.

/// What a path leads to, or how far it leads.
struct TFormPlace {
    TFormNodeIndex Node = 0; ///< the last thing that there is
    std::string_view Rest;   ///< the part of the path behind it; empty when all of it was found
};
/// Raises EFormError for a tree without a form.
TFormPlace FindInForm(const TFormTree& tree, std::string_view path);

/// What the path leads to. Raises EFormError, which names what there is instead, for any other.
TFormNodeIndex RequireInForm(const TFormTree& tree, std::string_view path);

/// The error for a path that ends early, with the nearest names that there are.
EFormError NotInForm(const TFormTree& tree, const TFormPlace& place);

/// The path of a node, beginning with the root's name, or its class where it has none.
std::string FormPathOf(const TFormTree& tree, TFormNodeIndex node);

} // namespace tarn
