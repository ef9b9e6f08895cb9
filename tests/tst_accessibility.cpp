#include "support/gui.h"

#include "qtbase/ipaddresswidget.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QToolTip>

namespace {

QString accessibleText(QWidget* widget, QAccessible::Text kind)
{
    return QAccessible::queryAccessibleInterface(widget)->text(kind);
}

} // namespace

/// What people need who use no mouse, hear the window instead of seeing it, or like large letters.
class AccessibilityTest : public gui::GuiTest
{
    Q_OBJECT

private slots:
    void tabReachesEveryControl()
    {
        openOn({sdk::camera()});
        type("editIpAddress", "192.168.1.77");
        tree().setFocus();
        QStringList reached;
        do {
            reached << QApplication::focusWidget()->objectName();
            QTest::keyClick(m_window.get(), Qt::Key_Tab);
        } while (QApplication::focusWidget()->objectName() != "treeWidget" && reached.size() < 50);
        // of the three modes the chosen one is reached, the others by the arrow keys
        QCOMPARE(reached, (QStringList{"treeWidget", "btnUsePersistentIp", "editIpAddress", "editNetmask",
                                       "editDefaultGateway", "editCustomName", "btnWriteConfiguration",
                                       "btnRefresh", "labelSelectionInfo", "labelHint"}));
    }

    void everyControlSaysWhatItIs()
    {
        openOn({sdk::with(sdk::camera(), {{"UserDefinedName", "Gate"}})});
        IpAddressWidget dialog(m_window.get());
        dialog.setShowMacAddress(true);
        int controls = 0;
        for (QWidget* const window :
             {static_cast<QWidget*>(m_window.get()), static_cast<QWidget*>(&dialog)}) {
            for (QWidget* const widget : window->findChildren<QWidget*>()) {
                const bool isControl = (widget->focusPolicy() & Qt::TabFocus) != 0;
                controls += isControl ? 1 : 0;
                QVERIFY2(!isControl || !accessibleText(widget, QAccessible::Name).isEmpty() ||
                             !accessibleText(widget, QAccessible::Description).isEmpty(),
                         qPrintable(widget->objectName()));
            }
        }
        QVERIFY(controls > 12);
        auto* const table = QAccessible::queryAccessibleInterface(&tree())->tableInterface();
        const auto cell = [&](int column, QAccessible::Text kind) {
            return table->cellAt(1, column)->text(kind);
        };
        QCOMPARE(cell(0, QAccessible::Name), "km-1");
        QCOMPARE(cell(0, QAccessible::Description), "OK, 192.168.1.9");
        QCOMPARE(cell(4, QAccessible::Name), "OK");
    }

    void mnemonicsAreUnique()
    {
        openOn({sdk::camera()});
        const IpAddressWidget dialog(m_window.get());
        const auto& bar = child<QMenuBar>("menuBar");
        const auto& help = child<QMenu>("menuHelp");
        QCOMPARE(gui::letters(*m_window->centralWidget(), bar.actions()), "?ADFGIMSTUV");
        QCOMPARE(gui::letters(help, help.actions()), "ACFH");
        QCOMPARE(gui::letters(dialog), "AGIM");
        type("editCustomName", "Gate");
        press(QKeySequence("Alt+S"));
        QTRY_COMPARE(row("km-1").text(1), "Gate");
        QCOMPARE(m_window->focusWidget()->objectName(), "editCustomName"); // where one was before
    }

    void theContextMenuNeedsNoMouse()
    {
        openOn({sdk::camera()});
        tree().setFocus();
        expect({[](QWidget& menu) {
            QCOMPARE(menu.actions().size(), 1);
            QTest::keyClick(&menu, Qt::Key_Escape);
        }});
        press(QKeySequence("Shift+F10"));
    }

    void aToolTipTellsTextsThatAreCutOff()
    {
        openOn({sdk::with(sdk::camera(), {{"UserDefinedName", "<b>Gate"}})});
        const QModelIndex cell = tree().model()->index(0, 1, tree().model()->index(0, 0));
        for (const auto& [width, told] : {std::pair(500, ""), std::pair(30, "<span>&lt;b&gt;Gate</span>")}) {
            tree().setColumnWidth(1, width);
            const QPoint spot = tree().visualRect(cell).center();
            QHelpEvent hover(QEvent::ToolTip, spot, tree().viewport()->mapToGlobal(spot));
            QApplication::sendEvent(tree().viewport(), &hover);
            QCOMPARE(QToolTip::text(), told);
        }
        QToolTip::hideText();
    }

    void textsAreSeenInFullWithLargeLetters()
    {
        const QFont usual = QApplication::font();
        QFont large = usual;
        large.setPointSizeF(usual.pointSizeF() * 1.4);
        QApplication::setFont(large);
        sdk::Camera lost = sdk::camera("km-1", "025E41000001", "172.20.1.9");
        lost.accessibility = Tessal::Accessibility::NotReachable;
        openOn({lost});
        for (const char* const name : {"labelNetmask", "btnUseAutoIp", "labelCustomName"}) {
            auto& text = child<QWidget>(name);
            QVERIFY2(text.sizeHint().width() <= text.width(), name);
        }
        const auto& hint = child<QLabel>("labelHint");
        QVERIFY(hint.text().contains("192.168.1.254"));
        QTRY_VERIFY(hint.width() > 100 && hint.heightForWidth(hint.width()) <= hint.height());
        QApplication::setFont(usual);
    }
};

int main(int argc, char** argv)
{
    AccessibilityTest test;
    return gui::run(test, argc, argv);
}

#include "tst_accessibility.moc"
