#include "genicam/exceptions.h"
#include "ozlog/ozlog.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"
#include "qtbase/helpandsupport.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/messages.h"
#include "qtbase/validators.h"
#include "support/trace.h"
#include "tessal/deviceinfo.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QNetworkInterface>
#include <QPushButton>
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

    void addressesAreJudged_data()
    {
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QValidator::State>("state");
        const auto row = [](const char* name, const char* mask, const char* address,
                            QValidator::State state) { QTest::newRow(name) << mask << address << state; };
        using enum QValidator::State;
        row("first", "255.255.255.0", "192.168.1.1", Acceptable);
        row("last, with leading zeros", "255.255.255.0", "192.168.001.254", Acceptable);
        row("multicast", "255.255.255.0", "224.0.0.1", Acceptable);
        row("network", "255.255.255.0", "192.168.1.0", Intermediate);
        row("broadcast", "255.255.255.0", "192.168.1.255", Intermediate);
        row("zeros at the end of a wide network's host", "255.255.240.0", "172.16.1.0", Acceptable);
        row("broadcast of a wide network", "255.255.240.0", "172.16.15.255", Intermediate);
        row("network of two", "255.255.255.254", "10.0.0.0", Acceptable);
        row("network of one", "255.255.255.255", "10.0.0.255", Acceptable);
        row("no address", "255.255.255.255", "0.0.0.0", Intermediate);
        row("half a mask", "255.255.", "10.0.0.255", Acceptable);
        row("no mask at all", "255.0.255.0", "10.0.0.0", Acceptable);
        row("nothing", "", "", Intermediate);
        row("three numbers", "", "192.168.1.", Intermediate);
        row("two dots", "", "192..1.1", Intermediate);
        row("above 255", "", "256.1.1.1", Intermediate);
        row("five numbers", "", "1.2.3.4.5", Intermediate);
        row("a letter", "", "10.0.0.x", Invalid);
        row("a sign", "", "-1", Invalid);
        row("digits of another script", "", "١", Invalid);
        row("a mask length", "", "10.0.0.1/24", Intermediate);
        row("a mask length behind half an address", "", "10.0.0/24", Invalid);
        row("no mask length", "", "10.0.0.1/0", Invalid);
        row("too large a mask length", "", "10.0.0.1/33", Invalid);
    }

    void addressesAreJudged()
    {
        QFETCH(const QString, mask);
        QFETCH(QString, address);
        QLineEdit maskEdit(mask);
        QIpAddressWithNetmaskValidator validator(&maskEdit, nullptr);
        int pos = 0;
        QTEST(validator.validate(address, pos), "state");
        validator.setAllowNullAddress(true);
        if (address.isEmpty() || address == "0.0.0.0") {
            QCOMPARE(validator.validate(address, pos), QValidator::Acceptable);
        }
    }

    void masksAreJudgedAndFixed_data()
    {
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QValidator::State>("state");
        QTest::addColumn<QString>("fixed");
        const auto row = [](const char* mask, QValidator::State state, const char* fixed) {
            QTest::newRow(mask) << mask << state << fixed;
        };
        using enum QValidator::State;
        row("128.0.0.0", Acceptable, "128.0.0.0");
        row("255.255.255.255", Acceptable, "255.255.255.255");
        row("255.255.000.000", Acceptable, "255.255.0.0");
        row("255.0.255.0", Intermediate, "255.0.255.0");
        row("0.0.0.255", Intermediate, "0.0.0.255");
        row("0.0.0.0", Intermediate, "0.0.0.0");
        row("255.255.", Intermediate, "255.255.");
        row("1", Intermediate, "128.0.0.0");
        row("/32", Intermediate, "255.255.255.255");
        row("33", Intermediate, "33");
        row("/0", Intermediate, "/0");
        row("/", Intermediate, "/");
        row("2/4", Invalid, "2/4");
        row("255.x", Invalid, "255.x");
    }

    void masksAreJudgedAndFixed()
    {
        QFETCH(QString, mask);
        const QIpNetmaskValidator validator(nullptr);
        int pos = 0;
        QTEST(validator.validate(mask, pos), "state");
        validator.fixup(mask);
        QTEST(mask, "fixed");
    }

    void whatPeopleTypeIsUnderstood_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("inserted");
        QTest::addColumn<QString>("after"); // with "|" for the caret
        QTest::newRow("a comma at the end") << "192.168" << 7 << ","
                                            << "192.168.|";
        QTest::newRow("a comma inside") << "192168.10.1" << 3 << ","
                                        << "192.|168.10.1";
        QTest::newRow("pasted with blanks") << "" << 0 << "\t192.168.10.77 \n"
                                            << "192.168.10.77|";
        QTest::newRow("a blank inside") << "192.168.10.1" << 3 << " "
                                        << "192|.168.10.1";
        QTest::newRow("a letter") << "192.168" << 3 << "x"
                                  << "192|.168";
    }

    void whatPeopleTypeIsUnderstood()
    {
        QFETCH(const QString, before);
        QFETCH(const int, caret);
        QFETCH(const QString, inserted);
        IpAddressWidget dialog;
        for (const char* const name : {"editIpAddress", "editSubnetMask", "editDefaultGateway"}) {
            auto& edit = *dialog.findChild<QLineEdit*>(name);
            edit.setText(before);
            edit.setCursorPosition(caret);
            edit.insert(inserted);
            QTEST(edit.text().insert(edit.cursorPosition(), '|'), "after");
        }
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

    // NOLINTNEXTLINE(readability-function-size): a table, each row a case
    void aFailureIsToldInPlainSentences_data()
    {
        using enum Tessal::FailureKind;
        using enum Tessal::Setting;
        QTest::addColumn<Tessal::Failure>("failure");
        QTest::addColumn<QString>("told");
        const std::string camera = "192.168.1.20", mac = "025E41000001", other = "025E41000002";
        QTest::newRow("refused after other settings were taken")
            << Tessal::Failure{.kind = Refused,
                               .setting = SubnetMask,
                               .address = camera,
                               .wanted = "255.255.0.0",
                               .kept = {Name, IpConfigMode, IpAddress}}
            << "The camera 192.168.1.20 refused the new subnet mask 255.255.0.0. It already has the new device user ID, the new IP configuration and the new IP address.";
        QTest::newRow("refused a setting that was to be read")
            << Tessal::Failure{.kind = Refused, .setting = IpConfigMode, .address = camera}
            << "The camera 192.168.1.20 refused the request.";
        QTest::newRow("refused control")
            << Tessal::Failure{.kind = Refused, .setting = Control, .address = camera}
            << "The camera 192.168.1.20 refused to be controlled by this program.";
        QTest::newRow("does not answer a discovery") // which has no address yet
            << Tessal::Failure{.kind = NoAnswer, .mac = mac}
            << "The camera 02:5E:41:00:00:01 did not answer.";
        QTest::newRow("does not answer a write")
            << Tessal::Failure{.kind = NoAnswer,
                               .setting = DefaultGateway,
                               .address = camera,
                               .wanted = "0.0.0.0"}
            << "The camera 192.168.1.20 did not answer when it was given the new gateway 0.0.0.0. Check whether it is still connected, then try again.";
        QTest::newRow("asks for more time")
            << Tessal::Failure{.kind = AskedForMoreTime, .setting = Identity, .address = camera}
            << "The camera 192.168.1.20 kept asking for more time and never answered. Wait a moment, then try again.";
        QTest::newRow("busy")
            << Tessal::Failure{.kind = Busy, .setting = TemporaryAddress, .mac = mac, .wanted = "10.0.0.9"}
            << "The camera 02:5E:41:00:00:01 is busy and did not take the temporary address 10.0.0.9. Wait a moment, then try again.";
        QTest::newRow("controlled by another computer")
            << Tessal::Failure{.kind = ControlledElsewhere, .address = camera, .other = "192.168.1.6"}
            << "The camera 192.168.1.20 is controlled by another application, on the computer 192.168.1.6. Close the connection there, then try again.";
        QTest::newRow("kept another mode")
            << Tessal::Failure{.kind = NotKept,
                               .setting = IpConfigMode,
                               .address = camera,
                               .wanted = "6",
                               .actual = "5"}
            << "The camera 192.168.1.20 confirmed the new IP configuration DHCP but reports Static IP.";
        QTest::newRow("kept a name that would break the line")
            << Tessal::Failure{.kind = NotKept,
                               .setting = Name,
                               .address = camera,
                               .wanted = "belt",
                               .actual = "<b>\n%1"}
            << "The camera 192.168.1.20 confirmed the new device user ID “belt” but reports “<b>\uFFFD%1”.";
        QTest::newRow("no camera was meant")
            << Tessal::Failure{.kind = CannotSend, .reason = "Network is down"}
            << "This computer could not use its network. Check the network adapter and its cable.";
        QTest::newRow("no way to the address")
            << Tessal::Failure{.kind = CannotSend, .address = "10.9.9.9", .reason = "Network is unreachable"}
            << "This computer cannot reach the address 10.9.9.9 through any of its network adapters.";
        QTest::newRow("two cameras with one address")
            << Tessal::Failure{.kind = AddressContested, .address = camera, .mac = mac, .other = other}
            << "Two cameras have the address 192.168.1.20, those with the MAC addresses 02:5E:41:00:00:01 and 02:5E:41:00:00:02. One of them needs another address first.";
        QTest::newRow("address of another camera")
            << Tessal::Failure{.kind = AddressOfAnotherCamera,
                               .mac = mac,
                               .other = other,
                               .wanted = "10.0.0.9"}
            << "The address 10.0.0.9, which was given to the camera 02:5E:41:00:00:01, is also that of the camera 02:5E:41:00:00:02. Choose another temporary address.";
        QTest::newRow("address not taken")
            << Tessal::Failure{.kind = AddressNotTaken, .mac = mac, .wanted = "10.0.0.9", .actual = camera}
            << "The camera 02:5E:41:00:00:01 was given the address 10.0.0.9 but has 192.168.1.20. Try again, or choose another temporary address.";
        QTest::newRow("not a MAC address")
            << Tessal::Failure{.kind = InvalidValue, .setting = MacAddress, .wanted = "02-5E-41-"}
            << "“02-5E-41-” is not a MAC address, which has twelve hexadecimal digits.";
    }
    void aFailureIsToldInPlainSentences()
    {
        QFETCH(Tessal::Failure, failure);
        QTEST(describeFailure(failure), "told");
    }

    void boxesTellWhatFailed()
    {
        const QString name = "<img src='x' width=900 height=900><b>name</b>";
        const GenICam::RuntimeException failure(qPrintable(name), "/src/a.cpp", 12, "x");
        const QString critical = "Critical|" + QGuiApplication::applicationDisplayName() + '|';
        const QString details = "|Operation: refresh\n" + name + " : x thrown (file '/src/a.cpp', line 12)";
        QCOMPARE(boxOf([&] { showException("refresh", failure, "Heading", nullptr); }),
                 critical + "Heading" + details);
        QCOMPARE(
            boxOf([] { showException("refresh", std::runtime_error(" "), nullptr); }),
            critical +
                "The operation failed for an unexpected reason. The details say more.|Operation: refresh\n ");
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
        QCOMPARE(maskAfter("editIpAddress", "192.88.99.7/20"), "255.255.240.0");
        QCOMPARE(dialog.ipAddress(), "192.88.99.7");
        QCOMPARE(maskAfter("editDefaultGateway", "192.88.99.8/4"), "240.0.0.0");
        QCOMPARE(dialog.defaultGateway(), "192.88.99.8");
        const auto mask = [](const QString& address) {
            return IpAddressWidget::subnetFromAddress(QHostAddress(address)).toString();
        };
        QCOMPARE(each("126.255.255.1 128.0.0.1 191.255.0.1 192.88.99.1 223.255.255.1", mask), // on no host
                 "255.0.0.0 255.255.0.0 255.255.0.0 255.255.255.0 255.255.255.0");
        QCOMPARE(each("0.1.2.3 224.0.0.1 255.255.255.255 fe80::1 -", mask).trimmed(), "");
    }

    void dialogWaitsUntilAllIsComplete_data()
    {
        QTest::addColumn<QString>("mac");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("gateway");
        QTest::addColumn<bool>("isComplete");
        const auto row = [](const char* name, const char* mac, const char* address, const char* mask,
                            const char* gateway, bool isComplete) {
            QTest::newRow(name) << mac << address << mask << gateway << isComplete;
        };
        const char* const gate = "02-5E-41-00-00-03";
        row("complete", gate, "192.168.1.9", "255.255.255.0", "192.168.1.1", true);
        row("without gateway", gate, "192.168.1.9", "255.255.255.0", "", true);
        row("of no use", gate, "224.0.0.1", "255.255.255.0", "", true);
        row("half an address", gate, "192.168.1.", "255.255.255.0", "", false);
        row("no address", gate, "", "", "", true);
        row("no address, half a mask", gate, "", "255.", "", false);
        row("no mask", gate, "192.168.1.9", "", "", false);
        row("half a gateway", gate, "192.168.1.9", "255.255.255.0", "192.", false);
        row("half a MAC address", "02-5E-41-00-00-", "192.168.1.9", "255.255.255.0", "", false);
        row("another MAC address", "02-5E-41-00-00-04", "192.168.1.9", "255.255.255.0", "", true);
    }

    void dialogWaitsUntilAllIsComplete()
    {
        QFETCH(const QString, mac);
        QFETCH(const QString, address);
        QFETCH(const QString, mask);
        QFETCH(const QString, gateway);
        QFETCH(const bool, isComplete);
        IpAddressWidget dialog;
        advice::Surroundings surroundings;
        surroundings.cameras.push_back({"Gate", "dz", {{0x02, 0x5E, 0x41, 0x00, 0x00, 0x03}}, {}});
        dialog.setSurroundings(surroundings);
        dialog.setShowMacAddress(true);
        for (const auto& [name, text] : {std::pair{"editMacAddress", mac},
                                         {"editIpAddress", address},
                                         {"editSubnetMask", mask},
                                         {"editDefaultGateway", gateway}}) {
            dialog.findChild<QLineEdit*>(name)->setText(text);
        }
        const QPushButton& ok = *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        QCOMPARE(ok.isEnabled(), isComplete);
        QCOMPARE(ok.accessibleDescription().isEmpty() && ok.toolTip().isEmpty(), isComplete);
        QCOMPARE(dialog.findChild<QLabel*>("labelCamera")->text(),
                 mac.endsWith("03")   ? "Gate, dz, MAC address 02:5E:41:00:00:03"
                 : mac.endsWith("04") ? "not in the list"
                                      : "");
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
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../share/doc/lanvic/help");
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
