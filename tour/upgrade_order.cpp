// SPDX-License-Identifier: MIT
#include "tour/upgrade_order.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

namespace
{

/// The first with a click, the others as with the control key held.
void select(Tour& tour, const QStringList& boxes)
{
    tour.clickBox(boxes.first());
    TreeView* view = tour.devices();
    for (const QString& ip : boxes.mid(1)) {
        const QModelIndex index = view->treeModel()->indexOf(tour.box(ip));
        view->scrollTo(index);
        const QRect row = view->visualRect(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          {row.left() + row.width() / 3, row.center().y()});
    }
}

bool choose(Tour& tour, const QString& package)
{
    return tour.inPopup(
        [&] { tour.click(tour.child<QWidget>("firmwareUpdate")); }, "a package to choose",
        [](QWidget& dialog) { return qobject_cast<QFileDialog*>(&dialog) != nullptr; },
        [&](QWidget& dialog) {
            auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
            edit->setText(package);
            QTest::keyClick(edit, Qt::Key_Return);
        });
}

} // namespace

bool orderUpgrade(Tour& tour, const QStringList& boxes, const QString& package)
{
    select(tour, boxes);
    bool isChosen = false;
    const bool isAsked =
        tour.inPopup([&] { isChosen = choose(tour, package); }, "the question whether to upgrade",
                     [](QWidget& dialog) {
                         const auto* keep = dialog.findChild<QAbstractButton*>("Recovery");
                         return keep && keep->isVisible();
                     },
                     [&](QWidget& dialog) {
                         tour.takePicture();
                         QTest::mouseClick(dialog.findChild<QWidget*>("Recovery"), Qt::LeftButton);
                     });
    return isChosen && isAsked;
}
