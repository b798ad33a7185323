// SPDX-License-Identifier: MIT
#include "ui/upgrade/package_dialog.h"

#include "common/living_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QPointer>

QString chooseFirmwarePackage(QWidget* parent)
{
    const auto text = [](const char* source) {
        return QCoreApplication::translate("BatchUpgrade", source);
    };
    static QString lastFolder;
    const QPointer<QWidget> window = parent;
    const QString folder = livingFolder(lastFolder);
    if (!window)
        return {};
    const QPointer<QFileDialog> dialog = new QFileDialog(parent, QString(), folder);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setLabelText(QFileDialog::Accept, text(QT_TRANSLATE_NOOP("BatchUpgrade", "选择固件")));
    dialog->setLabelText(QFileDialog::Reject, text(QT_TRANSLATE_NOOP("BatchUpgrade", "取消")));
    dialog->setNameFilter(
        text(QT_TRANSLATE_NOOP("BatchUpgrade", "固件包文件 (%1)")).arg(QStringLiteral("*.dat")));
    QString file;
    if (dialog->exec() == QDialog::Accepted && dialog) {
        file = dialog->selectedFiles().value(0);
        lastFolder = dialog->directory().path();
    }
    if (dialog)
        dialog->setDirectory(QDir::homePath());
    delete dialog;
    return file;
}
