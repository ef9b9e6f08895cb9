#include "support/gui.h"

#include "qtbase/ipaddresswidget.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QMenuBar>
#include <QTextBrowser>
#include <QToolTip>

/// What people need who use no mouse, hear the window instead of seeing it, or like large letters.
class AccessibilityTest : public gui::GuiTest
{
    Q_OBJECT

private slots:
    void everythingIsReachedByKeysAndSaysWhatItIs()
    {
        openOn();
        tree().setFixedHeight(50); // one row is seen
        type("editCustomName", "Gate");
        press(QKeySequence("Alt+S"));
        QTRY_COMPARE(row("km-1").text(1), "Gate");
        QCOMPARE(m_window->focusWidget()->objectName(), "editCustomName"); // where one was before

        type("editIpAddress", "192.168.1.77");
        QStringList reached;
        for (const char* const keys : {"Alt+U", "Alt+G", "Alt+M", "Alt+I"}) {
            press(QKeySequence(keys));
            reached << QApplication::focusWidget()->objectName();
        }
        tree().setFocus();
        do {
            reached << QApplication::focusWidget()->objectName();
            QTest::keyClick(m_window.get(), Qt::Key_Tab);
        } while (QApplication::focusWidget()->objectName() != "treeWidget" && reached.size() < 50);
        // of the three modes the chosen one is reached, the others by the arrow keys
        QCOMPARE(reached, (QStringList{"editCustomName", "editDefaultGateway", "editNetmask", "editIpAddress",
                                       "treeWidget", "btnUsePersistentIp", "editIpAddress", "editNetmask",
                                       "editDefaultGateway", "editCustomName", "btnWriteConfiguration",
                                       "btnRefresh", "labelSelectionInfo", "labelHint"}));
        QStringList rowsOfMenus;
        const auto noteRow = [&](QWidget& menu) {
            const auto* const item = tree().itemAt(tree().viewport()->mapFromGlobal(menu.pos()));
            rowsOfMenus << (item != nullptr ? item->text(0) : "none");
            gui::escape(menu);
        };
        expect({noteRow, noteRow});
        tree().scrollToItem(&row("km-1"));
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(m_window->windowHandle(), &menuKey);
        tree().scrollToBottom();
        press(QKeySequence("Shift+F10"));
        QCOMPARE(rowsOfMenus, (QStringList{"km-1", "km-1"}));
        child<QWidget>("editCustomName").setFocus();
        press(QKeySequence("Shift+F10")); // there the key is the field's
        QCOMPARE(rowsOfMenus.size(), 2);

        IpAddressWidget dialog(m_window.get());
        QCOMPARE(gui::mnemonics(*m_window->centralWidget(), child<QMenuBar>("menuBar").actions()),
                 "?ADFGIMSTUV");
        QCOMPARE(gui::mnemonics(dialog), "AGIM");
        dialog.setShowMacAddress(true);
        for (QWidget* const widget : m_window->findChildren<QWidget*>()) {
            if ((widget->focusPolicy() & Qt::TabFocus) != 0) {
                auto* const spoken = QAccessible::queryAccessibleInterface(widget);
                const QString text = spoken->text(QAccessible::Name) + spoken->text(QAccessible::Description);
                QVERIFY2(!text.isEmpty(), qPrintable(widget->objectName()));
            }
        }
        auto* const table = QAccessible::queryAccessibleInterface(&tree())->tableInterface();
        QCOMPARE(table->cellAt(1, 0)->text(QAccessible::Name), "km-1");
        QCOMPARE(table->cellAt(1, 0)->text(QAccessible::Description), "OK, 192.168.1.9");
        QCOMPARE(table->cellAt(1, 4)->text(QAccessible::Name), "OK");
    }

    void aToolTipTellsTextsThatAreCutOff()
    {
        openOn({sdk::with(sdk::camera(), {{"UserDefinedName", "<b>Gate"}})});
        const QModelIndex cell = tree().model()->index(0, 1, tree().model()->index(0, 0));
        const auto toolTip = [&](int width) {
            tree().setColumnWidth(1, width);
            const QPoint spot = tree().visualRect(cell).center();
            QHelpEvent hover(QEvent::ToolTip, spot, tree().viewport()->mapToGlobal(spot));
            QApplication::sendEvent(tree().viewport(), &hover);
            return QToolTip::text();
        };
        QCOMPARE(toolTip(500), "");
        QCOMPARE(toolTip(30), "<span>&lt;b&gt;Gate</span>");
        QToolTip::hideText();
    }

    void textsAreSeenInFullWithLargeLetters()
    {
        const QFont usual = QApplication::font();
        sdk::Camera lost = sdk::with(sdk::camera("km-1", "025E41000001", "172.20.1.9"),
                                     {{"SerialNumber", "SN-0123456789ABC"}});
        lost.accessibility = Tessal::Accessibility::NotReachable;
        const auto openWith = [&](qreal size) {
            QFont large = usual;
            large.setPointSizeF(size);
            QApplication::setFont(large);
            openOn({lost});
        };
        openWith(usual.pointSizeF());
        const auto& info = child<QLabel>("labelSelectionInfo");
        QTRY_VERIFY(info.width() < 250 &&
                    info.minimumSizeHint().width() <= info.width()); // nothing is cut off

        const qreal large = usual.pointSizeF() * 1.4;
        openWith(large);
        for (const char* const name : {"labelNetmask", "btnUseAutoIp", "labelCustomName"}) {
            auto& text = child<QWidget>(name);
            QVERIFY2(text.sizeHint().width() <= text.width(), name);
        }
        const auto& edit = child<QLineEdit>("editNetmask");
        const QSize longest = edit.fontMetrics().size(0, "255.255.255.255"); // beside frame and margins
        QVERIFY(longest.width() <= edit.width() - 8 && longest.height() <= edit.height() - 4);
        const auto& hint = child<QLabel>("labelHint");
        QVERIFY(hint.text().contains("192.168.1.254"));
        QTRY_VERIFY(hint.width() > 100 && hint.heightForWidth(hint.width()) <= hint.height());
        const auto isScrolled = [&] { // with the focus on it, so that the keys scroll it
            child<QWidget>("labelHint").setFocus();
            return qobject_cast<QTextBrowser*>(QApplication::focusWidget()) != nullptr;
        };
        QVERIFY(!isScrolled());
        select("lan0");
        QCOMPARE(hint.font().pointSizeF(), large); // a text that is short is not small

        openWith(usual.pointSizeF() * 3);
        QTRY_VERIFY(isScrolled());
        const auto& scrolled = *qobject_cast<QTextBrowser*>(QApplication::focusWidget());
        QVERIFY(scrolled.isVisible() && scrolled.toPlainText().contains("192.168.1.254"));
        select("lan0");
        QVERIFY(!scrolled.isVisible());
        QApplication::setFont(usual);
    }
};

WINDOW_TEST_MAIN(AccessibilityTest)
#include "tst_accessibility.moc"
