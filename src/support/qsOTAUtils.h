#pragma once

/// The way to the IDE: lookups of its services and walks over its modules, projects and editors.
///
/// A result is null, and a list empty, when there is no IDE, when it does not offer the service
/// asked for, or when it has nothing of the kind. Null arguments count as "nothing" too. Forms and
/// components handed out belong to the IDE. Nothing here raises an error of its own.

#include "ota/ToolsAPI.h"
#include "rtl/TStrings.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// What an editor edits: a form file or source text.
enum TModuleType : std::uint8_t { mtForm, mtUnit };
inline constexpr std::string_view ModuleTypeNames[] = {"mtForm", "mtUnit"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TModuleType> = EnumType("TModuleType", ModuleTypeNames);

/// Which of its names a module goes by: file, unit, form or design class.
enum TModuleNameKind : std::uint8_t { mnkFile, mnkUnit, mnkForm, mnkDesignClass };
inline constexpr std::string_view ModuleNameKindNames[] = {"mnkFile", "mnkUnit", "mnkForm",
                                                           "mnkDesignClass"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TModuleNameKind> = EnumType("TModuleNameKind",
                                                                  ModuleNameKindNames);

/// A list of interface references; each keeps its object alive.
template <class I> using TInterfaceList = std::vector<TIntf<I>>;

// --- Services, modules and projects -----------------------------------------------------------

TIntf<IOTAKeyboardServices> OTAKeyboardServices();

/// The module that the IDE shows at present.
TIntf<IOTAModule> GetActiveModule();
/// The active project of the first open project group, even when it has none; without a group the
/// open project, and null when several are open.
TIntf<IOTAProject> GetActiveProject();
/// The resource file of the active project.
TIntf<IOTAProjectResource> GetProjectResource();

std::string GetProjectFormType(); ///< the form file type, without a point
std::string GetProjectFormExt();  ///< the form file extension, with its point

// --- Editors of a module ----------------------------------------------------------------------

/// The first file editor of the module that edits source text.
TIntf<IOTASourceEditor> GetSourceEditorFromModule(const TIntf<IOTAModule>& module);
/// The first file editor of the module that edits a form.
TIntf<IOTAFormEditor> GetFormEditorFromModule(const TIntf<IOTAModule>& module);
/// The source editor of the active module.
TIntf<IOTASourceEditor> GetActiveSourceEditor();
/// The form editor of the active module.
TIntf<IOTAFormEditor> GetActiveFormEditor();
/// The designer of the active module's form.
TIntf<IFormDesigner> GetActiveFormDesigner();

/// The form under design in the editor; null when the editor edits no form.
TForm* GetFormFromEditor(const TIntf<IOTAEditor>& editor);
TForm* GetFormFromEditor(const TIntf<IOTAFormEditor>& editor);

// --- The edit window --------------------------------------------------------------------------

/// The form of the edit window that shows the IDE's top view; null while the top buffer has no
/// view.
TForm* GetEditorForm();
/// The form of the edit window that shows the active module's source in its first view. Unlike
/// GetEditorForm it stays with the module when another buffer has come to the top.
TForm* GetEditorForm2();
/// The component of that name, without case, that the form of GetEditorForm owns.
TComponent* GetEditorFormComponent(std::string_view name);
/// The frontmost visible form of the screen whose component name holds "EditWindow", without case.
TForm* FindEditorForm();

// --- Lists ------------------------------------------------------------------------------------
// The list is cleared first. Its order is that of the IDE: modules, then the editors of a module.

/// The editors of that type in all open modules, or only in those that the active project owns. An
/// editor of a form counts when its form can be had.
void GetOpenedEditors(TInterfaceList<IOTAEditor>& list, TModuleType kind, bool projectOnly);
/// GetOpenedEditors of source text in all open modules.
void GetOpenedSourceEditors(TInterfaceList<IOTASourceEditor>& list);
/// GetOpenedEditors of forms in all open modules.
void GetOpenedFormEditors(TInterfaceList<IOTAFormEditor>& list);

/// The module entries of the active project.
void GetProjectModules(TInterfaceList<IOTAModuleInfo>& list);
/// The module entries of the active or the given project that have a form.
void GetProjectForms(TInterfaceList<IOTAModuleInfo>& list);
void GetProjectForms(const TIntf<IOTAProject>& project, TInterfaceList<IOTAModuleInfo>& list);
/// The names of that kind that the module entries of the active or the given project have; an
/// entry without one, as a unit without a form, is left out.
void GetProjectModuleNames(TStrings& list, TModuleNameKind kind);
void GetProjectModuleNames(const TIntf<IOTAProject>& project, TStrings& list, TModuleNameKind kind);

// --- Showing a module -------------------------------------------------------------------------

/// Opens the module and brings its editors to the front by the extensions of their files:
/// - mnkFile, mnkUnit: all but forms, headers, project files and resources;
/// - mnkForm: forms; unless formOnly, Pascal and C++ sources as well, which the IDE is asked to
///   open as files, but for a C++ source when showCppSource: it is shown as an editor;
/// - mnkDesignClass: none.
void ShowModule(const TIntf<IOTAModuleInfo>& info, TModuleNameKind kind, bool formOnly,
                bool showCppSource);
/// ShowModule of the active project's first entry that has the name, without case. Nothing is found
/// by a design class.
void ShowModuleByName(std::string_view name, TModuleNameKind kind, bool formOnly,
                      bool showCppSource);

} // namespace tarn
