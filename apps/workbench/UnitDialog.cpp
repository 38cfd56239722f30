#include "UnitDialog.h"

#include "Modules/TProjectModule.h"
#include "TMirror.h"
#include "TQtDialogs.h"
#include "rtl/SysUtils.h"

#include <QtWidgets>

namespace tarn {

std::vector<std::string> AskForUnits(QWidget& window,
                                     std::span<const TProjectModule* const> projects) {
    QDialog dialog(&window);
    SetTitle(dialog, "Units");
    dialog.setSizeGripEnabled(true);
    auto* const column = new QVBoxLayout(&dialog);
    auto* const label = new QLabel("&Units of the open projects:");
    auto* const list = new QListWidget;
    label->setBuddy(list);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setAccessibleName("Units");
    for (const TProjectModule* const project : projects)
        for (int i = 0; i < project->UnitCount(); ++i) {
            const std::string& file = project->Unit(i).FileName;
            auto* const item = new QListWidgetItem(FromText(ExtractFileName(file)), list);
            item->setToolTip(FromText(file));
            item->setData(Qt::UserRole, FromText(file));
        }
    list->setCurrentRow(0);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    column->addWidget(label);
    column->addWidget(list);
    column->addWidget(buttons);
    std::vector<std::string> files;
    if (!Execute(dialog)) return files;
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->isSelected())
            files.push_back(ToText(list->item(i)->data(Qt::UserRole).toString()));
    return files;
}

} // namespace tarn
