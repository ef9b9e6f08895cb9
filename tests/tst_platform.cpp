#include "genicam/exceptions.h"
#include "ozlog/ozlog.h"
#include "qtbase/formatting.h"
#include "qtbase/helpandsupport.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/messages.h"
#include "qtbase/validators.h"
#include "tessal/deviceinfo.h"
#include "trace.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QNetworkInterface>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace {

/// Runs `show`, which opens a message box, and returns "ICON|title|text|details" as shown before Escape
/// closed it. No box may take its text for markup.
template <typename Show>
QString boxOf(const Show& show)
{
    QStringList shown;
    QTimer::singleShot(0, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box != nullptr);
        if (box->textFormat() == Qt::PlainText) {
            shown << QVariant::fromValue(box->icon()).toString() << box->windowTitle() << box->text()
                  << box->detailedText();
        }
        QTest::keyClick(box, Qt::Key_Escape);
    });
    show();
    return shown.join('|');
}

/// What the function makes of each of the texts, which blanks separate.
QString each(const QString& texts, const std::function<QString(const QString&)>& function)
{
    QStringList results = texts.split(' ');
    std::ranges::transform(results, results.begin(), function);
    return results.join(' ');
}

/// Replaces the letter before each of the texts by the verdict: a, i or n for Acceptable, Intermediate or
/// Invalid.
QString verdicts(const QValidator& validator, const QString& texts)
{
    return each(texts, [&](const QString& text) {
        QString input = text.mid(1);
        int pos = 0;
        return QLatin1Char("nia"[validator.validate(input, pos)]) + text.mid(1);
    });
}

} // namespace

class PlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void dottedQuadsAreStrict()
    {
        const auto read = [](const QString& text) { return addressFromText(text).toString(); };
        QCOMPARE(each("192.168.1.20 0.0.0.0 255.255.255.255 010.001.000.099", read),
                 "192.168.1.20 0.0.0.0 255.255.255.255 10.1.0.99");
        const QString refused = "1 192.168.1 1.2.3.4.5 1.2.3. .1.2.3 1..2.3 256.1.1.1 1.2.3.0004 +1.2.3.4 "
                                "-1.2.3.4 0x1.2.3.4 1,2,3,4 fe80::1 ١.٢.٣.٤ 1.2.3.٤";
        QCOMPARE(each(refused, read).trimmed(), "");
        QCOMPARE(read("") + read(" 1.2.3.4") + read("1.2.3.4 "), "");
    }

    void recordsAreComparedAndShown()
    {
        const auto mac = [](const QString& text) { return formatMACAddress(qPrintable(text), ":"); };
        const QString macs = "025e410A0b0c 02-5E-41-0A-0B-0C 02:5e:41:0a:0b:0c";
        QCOMPARE(each(macs, mac), "02:5E:41:0A:0B:0C 02:5E:41:0A:0B:0C 02:5E:41:0A:0B:0C");
        const QString none = "<unknown> 025E410A0B 025E410A0B0C0D 02-5E:41-0A-0B-0C 0x5E410A0B0C "
                             "02.5E.41.0A.0B.0C 025E410A0B0G";
        QCOMPARE(each(none, mac), none);
        QCOMPARE(mac("") + formatMACAddress(nullptr, ":"), "");
        const auto mode = [](const QString& bits) { return formatIPConfiguration(qPrintable(bits), 1); };
        QCOMPARE(each("5 6 4", mode), "Static IP DHCP Auto IP (LLA)");
        QCOMPARE(each("0 8 x 5x -1", mode), "Unknown Unknown Unknown Unknown Unknown");
        QCOMPARE(formatIPConfiguration(nullptr, 1), "Unknown");
        QCOMPARE(formatIPConfiguration("7", 0), "Static IP, DHCP, Auto IP (LLA)");

        Tessal::COrvikGigEDeviceInfo record;
        const Tessal::COrvikGigEDeviceInfo empty(record);
        record.SetPropertyValue(Tessal::Key::UserDefinedName, "K\xC3\xBC\x63he");
        QVERIFY(record.IsSubset(empty) && !empty.IsSubset(record) && !(record == empty));
        QCOMPARE(GetUtf8Property(&record, "UserDefinedName") + GetUtf8Property(nullptr, "ModelName"),
                 QString::fromUtf8("Küche"));
    }

    void addressesAndMasksAreJudged()
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

        const QIpNetmaskValidator masks(nullptr);
        const QString judged =
            "a255.255.255.0 a128.0.0.0 a255.255.255.255 a255.255.000.000 i255.0.255.0 i0.0.0.255 "
            "i0.0.0.0 i255.255. i24 i/9 i/32 i33 i/0 i/ i n2/4 n/255.0 n255.x";
        QCOMPARE(verdicts(masks, judged), judged);
        const auto fixed = [&masks](QString text) {
            masks.fixup(text);
            return text;
        };
        QCOMPARE(each("24 1 /9 /32 255.255.000.000 33 /0 / 255.0.255.0", fixed),
                 "255.255.255.0 128.0.0.0 255.128.0.0 255.255.255.255 255.255.0.0 33 /0 / 255.0.255.0");
    }

    void traceLinesHaveLevelsAndNoControlCharacters()
    {
        using ozlog::LogLevel;
        const unsigned long base = ozlog::LogGetCatID("Lanvic.Base");
        const unsigned long other = ozlog::LogGetCatID("Lanvic.Test");
        QVERIFY(base != other && base == ozlog::LogGetCatID("Lanvic.Base"));
        const TraceCapture trace;
        const char steering[] = "a\n\x1b[1m\x7f\xc2\x80\xc2\x9f\u200e\u200f\u2028\u202e\u202c\u2066\u2069";
        const char harmless[] = "\u00a0\u200d\u2010\u2027\u202f\u2065\u206a\u0158";
        ozlog::LogTrace(base, LogLevel::Info, "%hs, %s. Retries remaining=%i.", steering, harmless, -3);
        ozlog::LogTrace(base, static_cast<LogLevel>(255), "100 %% of %hs", static_cast<const char*>(nullptr));
        ozlog::LogTrace(base, LogLevel::Error, "%u", 7u);
        ozlog::LogTrace(other, LogLevel::Info, "not shown");
        ozlog::LogTrace(other, LogLevel::Warning, "shown");
        ozlog::LogTrace(other + 1, LogLevel::Error, "of no category");
        const QString escaped = R"(a\x0A\x1B[1m\x7F\xC2\x80\xC2\x9F\xE2\x80\x8E\xE2\x80\x8F)"
                                R"(\xE2\x80\xA8\xE2\x80\xAE\xE2\x80\xAC\xE2\x81\xA6\xE2\x81\xA9)";
        const QList<TraceCapture::Line> expected{
            {"Lanvic.Base", QtInfoMsg, escaped + ", " + harmless + ". Retries remaining=-3."},
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
        const QString details = "|Operation: refresh\n" + name + " : x thrown (file '/src/a.cpp', line 12)";
        QCOMPARE(boxOf([&] { showException("refresh", failure, "Heading", nullptr); }),
                 critical + "Heading\n\n" + name + details);
        QCOMPARE(boxOf([] { showException("refresh", std::runtime_error(" "), nullptr); }),
                 critical + "The operation failed without saying why.|Operation: refresh\n ");
        QCOMPARE(boxOf([&] { showWarningMessage("Title", "", name, nullptr); }),
                 "Warning|Title|" + name + '|');
        QCOMPARE(
            boxOf(OpenFeedbackUrl), // this platform opens none
            "Warning|Submit Feedback|No browser could be started.\n\nPlease open this address yourself:\nhttps://www.orvik.example/feedback|");
    }

    void dialogTakesAddressesByKeys()
    {
        IpAddressWidget dialog;
        const auto height = [&](const char* header) {
            dialog.setHeaderText(header);
            return dialog.findChild<QLabel*>("labelHeader")->heightForWidth(400);
        };
        QVERIFY(height("one\ntwo") > height("one") && height("one<br>two") > height("one"));
        dialog.setIpAddress("192.168.0.");
        for (const auto& [withMac, keys] : {std::pair{true, "0a-0B:0cxyz"}, {false, "1x "}, {false, "7"}}) {
            dialog.setShowMacAddress(withMac);
            dialog.show(); // the keys go to the end of its first field
            QTest::keyClicks(dialog.focusWidget(), keys);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Home);
            dialog.hide();
        }
        QCOMPARE(dialog.macAddress() + ' ' + dialog.ipAddress(), "02-5E-41-0a-0B:0c 192.168.0.17");
        dialog.findChild<QLineEdit*>("editDefaultGateway")->insert(" 192.168.100.100 "); // as pasted
        QCOMPARE(dialog.defaultGateway(), "192.168.100.100");

        // the mask follows the address until it is typed itself
        dialog.setSubnetMask("255.255.255.0");
        const auto maskAfter = [&](const char* field, const QString& text) {
            auto* const edit = dialog.findChild<QLineEdit*>(field);
            edit->selectAll();
            QTest::keyClick(edit, Qt::Key_Delete);
            QTest::keyClicks(edit, text);
            return dialog.subnetMask();
        };
        QCOMPARE(maskAfter("editIpAddress", "191.255.0."), "255.255.255.0");
        QCOMPARE(maskAfter("editIpAddress", "191.255.0.1"), "255.255.0.0");
        QCOMPARE(maskAfter("editSubnetMask", "255.255.128.0"), "255.255.128.0");
        QCOMPARE(maskAfter("editIpAddress", "192.88.99.1"), "255.255.128.0");
        QCOMPARE(maskAfter("editSubnetMask", ""), "");
        QCOMPARE(maskAfter("editIpAddress", "192.88.99.1"), "255.255.255.0");
        const auto mask = [](const QString& address) {
            return IpAddressWidget::subnetFromAddress(QHostAddress(address)).toString();
        };
        QCOMPARE(each("126.255.255.1 128.0.0.1 191.255.0.1 192.88.99.1 223.255.255.1", mask), // on no host
                 "255.0.0.0 255.255.0.0 255.255.0.0 255.255.255.0 255.255.255.0");
        QCOMPARE(each("0.1.2.3 224.0.0.1 255.255.255.255 fe80::1 -", mask).trimmed(), "");
    }

    void helpAndSupport()
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

        // beside an installed program, or else in the source
        const QDir installed =
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../share/lanvic/help");
        const QString page = installed.filePath("index.html");
        QFile::remove(page);
        QVERIFY(installed.mkpath(".") && QFile::copy(GetHelpFilePath(), page));
        const QString found = GetHelpFilePath();
        QVERIFY(QFile::remove(page));
        QCOMPARE(found, page);
    }
};

QTEST_MAIN(PlatformTest)
#include "tst_platform.moc"
