// SPDX-License-Identifier: MIT
#include "ui/upgrade/package_dialog.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QPointer>

QString chooseFirmwarePackage(QWidget* parent)
{
    const auto text = [](const char* source) {
        return QCoreApplication::translate("BatchUpgrade", source);
    };
    const QPointer<QFileDialog> dialog = new QFileDialog(parent);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setLabelText(QFileDialog::Accept, text(QT_TRANSLATE_NOOP("BatchUpgrade", "选择固件")));
    dialog->setLabelText(QFileDialog::Reject, text(QT_TRANSLATE_NOOP("BatchUpgrade", "取消")));
    dialog->setNameFilter(
        text(QT_TRANSLATE_NOOP("BatchUpgrade", "固件包文件 (%1)")).arg(QStringLiteral("*.dat")));
    QString file;
    if (dialog->exec() == QDialog::Accepted && dialog)
        file = dialog->selectedFiles().value(0);
    delete dialog;
    return file;
}
