#include "trace.h"

#include "net/addresses.h"
#include "ozlog/ozlog.h"
#include "qtbase/formatting.h"
#include "qtbase/helpandsupport.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/messages.h"
#include "qtbase/validators.h"
#include "tessal/deviceinfo.h"

#include "genicam/exceptions.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QNetworkInterface>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

/// Runs `show`, which opens a message box, and returns "ICON|title|text|details" as shown before Escape
/// closed it. No box may take its text for markup.
template <typename Show>
QString boxOf(const Show& show)
{
    QString shown;
    QTimer::singleShot(0, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box != nullptr);
        const auto* const label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        if (label->textFormat() == Qt::PlainText && label->sizeHint().height() < 300) {
            shown = QVariant::fromValue(box->icon()).toString() + '|' + box->windowTitle() + '|' +
                    box->text() + '|' + box->detailedText();
        }
        QTest::keyClick(box, Qt::Key_Escape);
    });
    show();
    return shown;
}

/// Judges each of the texts, separated by blanks, and replaces the letter before it by the verdict: a, i or n
/// for Acceptable, Intermediate or Invalid.
QString verdicts(const QValidator& validator, const QString& texts)
{
    QStringList judged = texts.split(' ');
    for (QString& text : judged) {
        QString input = text.mid(1);
        int pos = 0;
        text[0] = QLatin1Char("nia"[validator.validate(input, pos)]);
    }
    return judged.join(' ');
}

} // namespace

class PlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void dottedQuadsAreStrict()
    {
        for (const char* refused : {"", "1", "192.168.1", "1.2.3.4.5", "1.2.3.", ".1.2.3", "1..2.3",
                                    "256.1.1.1", "1.2.3.0004", " 1.2.3.4", "1.2.3.4 ", "+1.2.3.4", "-1.2.3.4",
                                    "0x1.2.3.4", "1,2,3,4", "fe80::1", "١.٢.٣.٤", "1.2.3.٤"}) {
            QVERIFY2(addressFromText(QString::fromUtf8(refused)).isNull(), refused);
        }
        for (const char* plain : {"192.168.1.20", "0.0.0.0", "255.255.255.255"}) {
            QCOMPARE(addressFromText(plain).toString(), plain);
        }
        QCOMPARE(addressFromText("010.001.000.099").toString(), "10.1.0.99");
    }

    void macAddressesAreReadAndShown()
    {
        for (const char* mac : {"025e410A0b0c", "02-5E-41-0A-0B-0C", "02:5e:41:0a:0b:0c"}) {
            QCOMPARE(formatMACAddress(mac, ":"), "02:5E:41:0A:0B:0C");
        }
        for (const char* other : {"", "<unknown>", "025E410A0B", "025E410A0B0C0D", "02-5E:41-0A-0B-0C",
                                  "0x5E410A0B0C", "02.5E.41.0A.0B.0C", "025E410A0B0G"}) {
            QCOMPARE(formatMACAddress(other, ":"), other);
        }
        QCOMPARE(formatMACAddress(nullptr, ":"), QString());
    }

    void addressesAreJudgedUnderTheMask()
    {
        QLineEdit mask;
        QIpAddressWithNetmaskValidator validator(&mask, nullptr);
        for (const auto& [maskText, judged] : std::initializer_list<std::pair<const char*, QString>>{
                 {"255.255.255.0", "a192.168.1.1 a192.168.1.254 a192.168.001.010 a224.0.0.1 i192.168.1.0 "
                                   "i192.168.1.255 i0.0.0.0 i192.168.1. i192..1.1 i256.1.1.1 i1.2.3.4.5"},
                 {"255.255.240.0", "a172.16.1.0 a172.16.0.255 i172.16.0.0 i172.16.15.255"},
                 {"255.255.255.254", "a10.0.0.0 a10.0.0.1 i0.0.0.0"},
                 {"255.255.255.255", "a10.0.0.0 a10.0.0.255 i0.0.0.0"},
                 {"255.255.", "a10.0.0.0 a10.0.0.255 i0.0.0.0 i10.0.0"}, // none yet
                 {"255.0.255.0", "a10.0.0.0 i0.0.0.0"},
                 {"", "n10.0.0.x n10,0 n-1 n1/8 n١ i"},
             }) {
            mask.setText(maskText);
            QCOMPARE(verdicts(validator, judged), judged);
        }
        validator.setAllowNullAddress(true);
        QCOMPARE(verdicts(validator, "? ?0.0.0.0"), "a a0.0.0.0");
    }

    void masksAreJudgedAndFixed()
    {
        const QIpNetmaskValidator validator(nullptr);
        const QString judged =
            "a255.255.255.0 a128.0.0.0 a255.255.255.255 a255.255.000.000 i255.0.255.0 i0.0.0.255 "
            "i0.0.0.0 i255.255. i24 i/9 i/32 i33 i/0 i/ i n2/4 n/255.0 n255.x";
        QCOMPARE(verdicts(validator, judged), judged);
        QStringList fixed = QString("24 /9 /32 255.255.000.000 33 /0 / 255.0.255.0").split(' ');
        for (QString& text : fixed) {
            validator.fixup(text);
        }
        QCOMPARE(fixed.join(' '),
                 "255.255.255.0 255.128.0.0 255.255.255.255 255.255.0.0 33 /0 / 255.0.255.0");
    }

    void modesAreShown()
    {
        QCOMPARE(formatIPConfiguration("5", 1), "Static IP");
        QCOMPARE(formatIPConfiguration("6", 1), "DHCP");
        QCOMPARE(formatIPConfiguration("4", 1), "Auto IP (LLA)");
        QCOMPARE(formatIPConfiguration("7", 0), "Static IP, DHCP, Auto IP (LLA)");
        for (const char* none : {"", "0", "8", "x", "5x", "-1", static_cast<const char*>(nullptr)}) {
            QCOMPARE(formatIPConfiguration(none, 1), "Unknown");
        }
    }

    void recordsCompare()
    {
        Tessal::COrvikGigEDeviceInfo record;
        record.SetPropertyValue(Tessal::Key::UserDefinedName, "K\xC3\xBC\x63he");
        record.SetIpConfigCurrent("6");
        Tessal::COrvikGigEDeviceInfo copy(record);
        QVERIFY(copy == record && copy.IsSubset(record));
        copy.SetIpAddress("192.168.1.2");
        QVERIFY(!(copy == record) && copy.IsSubset(record) && !record.IsSubset(copy));
        record.SetIpAddress("192.168.1.3");
        QVERIFY(!copy.IsSubset(record));
        QCOMPARE(GetUtf8Property(&record, "UserDefinedName"), QString::fromUtf8("Küche"));
        QCOMPARE(GetUtf8Property(&record, "ModelName") + GetUtf8Property(nullptr, "ModelName"), QString());
    }

    void traceLinesHaveLevelsAndNoControlCharacters()
    {
        const unsigned long base = ozlog::LogGetCatID("Lanvic.Base");
        const unsigned long other = ozlog::LogGetCatID("Lanvic.Test");
        QVERIFY(base != other && base == ozlog::LogGetCatID("Lanvic.Base"));
        const TraceCapture trace;
        ozlog::LogTrace(base, ozlog::LogLevel::Info, "MAC=%hs. Retries remaining=%i.",
                        "a\nb\x1b[1m\xc2\x9b\xe2\x80\x8e", -3);
        ozlog::LogTrace(base, static_cast<ozlog::LogLevel>(255), "100 %% of %hs",
                        static_cast<const char*>(nullptr));
        ozlog::LogTrace(base, ozlog::LogLevel::Error, "%u", 7u);
        ozlog::LogTrace(other, ozlog::LogLevel::Info, "not shown");
        ozlog::LogTrace(other, ozlog::LogLevel::Warning, "shown");
        const QList<TraceCapture::Line> expected{
            {"Lanvic.Base", QtInfoMsg, R"(MAC=a\x0Ab\x1B[1m\xC2\x9B\xE2\x80\x8E. Retries remaining=-3.)"},
            {"Lanvic.Base", QtWarningMsg, "100 % of (null)"},
            {"Lanvic.Base", QtCriticalMsg, "7"},
            {"Lanvic.Test", QtWarningMsg, "shown"}};
        QVERIFY(trace.lines() == expected);
    }

    void boxesTellWhatFailed()
    {
        const QString name = "<img src='x' width=900 height=900><b>name</b>";
        const GenICam::RuntimeException failure(qPrintable(name), "/src/a.cpp", 12, "x");
        const QString critical = "Critical|" + QGuiApplication::applicationDisplayName() + '|';
        const QString plain = boxOf([&] { showException("openDevice", failure, nullptr); });
        QVERIFY2(plain.startsWith(critical + name + '|'), qPrintable(plain));
        QVERIFY(plain.contains("openDevice") && plain.endsWith(failure.what()));
        const QString headed = boxOf([&] { showException("refresh", failure, "Heading", nullptr); });
        QVERIFY(headed.startsWith(critical + "Heading\n\n" + name + '|'));
        const QString empty = boxOf([] { showException("refresh", std::runtime_error(""), nullptr); });
        QVERIFY(!empty.startsWith(critical + '|'));
        QVERIFY(boxOf([&] { showUnexpectedException("refresh", name, nullptr); }).contains(name));
        QCOMPARE(boxOf([&] { showWarningMessage("Title", "", name, nullptr); }),
                 "Warning|Title|" + name + '|');
    }

    void dialogIsFilledByKeys()
    {
        IpAddressWidget dialog;
        auto* const header = dialog.findChild<QLabel*>("labelHeader");
        dialog.setHeaderText("one line");
        const int oneLine = header->heightForWidth(400);
        for (const char* two : {"one\ntwo", "one<br>two"}) {
            dialog.setHeaderText(two);
            QVERIFY(header->heightForWidth(400) > oneLine);
        }
        dialog.setMacAddress("025e410a0b0c");
        QCOMPARE(dialog.macAddress(), "02-5E-41-0A-0B-0C");
        dialog.setMacAddress("<unknown>");
        dialog.setIpAddress("192.168.0.");
        dialog.setSubnetMask("255.255.255.0");

        const auto fill = [&](bool withMac, const char* keys) {
            dialog.setShowMacAddress(withMac);
            QTimer::singleShot(0, [=, &dialog] {
                QCOMPARE(dialog.findChild<QWidget*>("editMacAddress")->isVisible(), withMac);
                QCOMPARE(dialog.findChild<QWidget*>("labelMacAddress")->isVisible(), withMac);
                QTest::keyClicks(dialog.focusWidget(), keys);
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Home);
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
            });
            QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        };
        fill(false, "1x ");
        fill(false, "7"); // shown again, it keeps what was typed and goes on at its end
        fill(true, "0a-0B:0cxyz");
        QCOMPARE(dialog.ipAddress() + ' ' + dialog.subnetMask(), "192.168.0.17 255.255.255.0");
        QCOMPARE(dialog.macAddress(), "02-5E-41-0a-0B:0c");
    }

    void maskFollowsUntilTyped()
    {
        IpAddressWidget dialog;
        dialog.setSubnetMask("255.255.255.0");
        const auto maskAfter = [&](const char* field, const QString& text) {
            auto* const edit = dialog.findChild<QLineEdit*>(field);
            edit->selectAll();
            QTest::keyClick(edit, Qt::Key_Delete);
            QTest::keyClicks(edit, text);
            return dialog.subnetMask();
        };
        // on no host: the end of two old classes, and a network for documentation
        QCOMPARE(maskAfter("editIpAddress", "191.255.0."), "255.255.255.0");
        QCOMPARE(maskAfter("editIpAddress", "191.255.0.1"), "255.255.0.0");
        QCOMPARE(maskAfter("editSubnetMask", "255.255.128.0"), "255.255.128.0");
        QCOMPARE(maskAfter("editIpAddress", "203.0.113.1"), "255.255.128.0");
        QCOMPARE(maskAfter("editSubnetMask", ""), "");
        QCOMPARE(maskAfter("editIpAddress", "203.0.113.2"), "255.255.255.0");
        QCOMPARE(maskAfter("editIpAddress", "126.255.255.1"), "255.0.0.0");
        for (const char* none : {"", "0.1.2.3", "224.0.0.1", "255.255.255.255", "fe80::1"}) {
            QVERIFY(IpAddressWidget::subnetFromAddress(QHostAddress(QLatin1String(none))).isNull());
        }
    }

    void supportInfoHoldsNoIdentity()
    {
        const QString info = GetOrvikSupportInfo(true);
        QVERIFY(info.contains("support@orvik.example") && info.contains(qVersion()));
        for (const QNetworkInterface& adapter : QNetworkInterface::allInterfaces()) {
            QString mac = adapter.hardwareAddress();
            QVERIFY(mac.remove(':').toLongLong(nullptr, 16) == 0 ||
                    !info.contains(adapter.hardwareAddress(), Qt::CaseInsensitive));
            QVERIFY(info.contains(QStringLiteral("MTU %1").arg(adapter.maximumTransmissionUnit())));
        }
        QVERIFY(!GetOrvikSupportInfo(false).contains("MTU"));
    }
};

QTEST_MAIN(PlatformTest)
#include "tst_platform.moc"
