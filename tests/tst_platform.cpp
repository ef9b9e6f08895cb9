#include "genicam/exceptions.h"
#include "ozlog/ozlog.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/messages.h"
#include "qtbase/validators.h"
#include "support/columns.h"
#include "support/trace.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <optional>

using Conversion = QString (*)(const QString&);

/// Formats, validators, messages and the dialog for addresses.
class PlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void textsAreConverted_data()
    {
        const auto row = addColumns<Conversion, QString, QString>("convert", "text", "expected");
        // Rows of texts that the conversion makes that one of, or leaves as they are.
        const auto addTexts = [&row](const char* kind, Conversion convert, const QStringList& texts,
                                     const std::optional<QString>& expected = {}) {
            for (const QString& text : texts) {
                row(qPrintable(kind + (" '" + text) + '\''), convert, text, expected.value_or(text));
            }
        };
        const Conversion address = [](const QString& text) { return addressFromText(text).toString(); };
        addTexts("address", address, {"192.168.1.20", "0.0.0.0", "255.255.255.255"});
        addTexts("address", address, {"010.001.000.099"}, "10.1.0.99");
        addTexts("address", address,
                 {"", "192.168.1", "1.2.3.4.5", "1..2.3", "256.1.1.1", "1.2.3.0004", "+1.2.3.4", "1.2.3.4 ",
                  "fe80::1", "1.2.3.٤"},
                 "");
        const Conversion mac = [](const QString& text) { return formatMACAddress(qPrintable(text), ":"); };
        addTexts("MAC address", mac, {"025e410A0b0c", "02-5E-41-0A-0B-0C", "02:5e:41:0a:0b:0c"},
                 "02:5E:41:0A:0B:0C");
        addTexts("MAC address", mac,
                 {"", "<unknown>", "025E410A0B", "025E410A0B0C0D", "02-5E:41-0A-0B-0C", "0x5E410A0B0C",
                  "025E410A0B0G"});
        const Conversion mode = [](const QString& bits) {
            return formatIPConfiguration(qPrintable(bits), 1);
        };
        addTexts("mode", mode, {"0", "8", "x", "5x", "-1"}, "Unknown");
        const Conversion completed = [](const QString& text) {
            QString mask = text;
            QIpNetmaskValidator(nullptr).fixup(mask);
            return mask;
        };
        addTexts("typed mask", completed, {"255.0.255.0", "0.0.0.0", "255.255.", "33", "/0", "/", "2/4"});
        addTexts("typed mask", completed, {"255.255.000.000"}, "255.255.0.0");
        addTexts("typed mask", completed, {"1", "/1"}, "128.0.0.0");
        addTexts("typed mask", completed, {"/32"}, "255.255.255.255");
        const Conversion mask = [](const QString& text) {
            return IpAddressWidget::subnetFromAddress(QHostAddress(text)).toString();
        };
        addTexts("mask for", mask, {"126.255.255.1"}, "255.0.0.0");
        addTexts("mask for", mask, {"128.0.0.1", "191.255.0.1"}, "255.255.0.0");
        addTexts("mask for", mask, {"192.88.99.1", "223.255.255.1"}, "255.255.255.0");
        addTexts("mask for", mask, {"0.1.2.3", "224.0.0.1", "fe80::1", "-"}, "");
    }

    void textsAreConverted()
    {
        QFETCH(const Conversion, convert);
        QFETCH(const QString, text);
        QTEST(convert(text), "expected");
    }

    void addressesAreJudged_data()
    {
        const auto row = addColumns<QString, QString, QValidator::State>("mask", "address", "state");
        using enum QValidator::State;
        row("network", "255.255.255.0", "192.168.1.0", Intermediate);
        row("zeros at the end of a wide network's host", "255.255.240.0", "172.16.1.0", Acceptable);
        row("broadcast of a wide network", "255.255.240.0", "172.16.15.255", Intermediate);
        row("network of two", "255.255.255.254", "10.0.0.0", Acceptable);
        row("network of one", "255.255.255.255", "10.0.0.255", Acceptable);
        row("no address", "255.255.255.255", "0.0.0.0", Intermediate);
        row("half a mask", "255.255.", "10.0.0.255", Acceptable);
        row("no mask at all", "255.0.255.0", "10.0.0.0", Acceptable);
        row("nothing", "", "", Intermediate);
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

    void masksAreJudged()
    {
        const auto judge = [](QString mask) {
            int pos = 0;
            return QIpNetmaskValidator(nullptr).validate(mask, pos);
        };
        QCOMPARE(judge("0.0.0.0"), QValidator::Intermediate);
        QCOMPARE(judge("/32"), QValidator::Intermediate);
        QCOMPARE(judge("2/4"), QValidator::Invalid);
    }

    void whatPeopleTypeIsUnderstood()
    {
        IpAddressWidget dialog;
        const auto insert = [&dialog](const char* field, QString before, const char* inserted) {
            auto& edit = *dialog.findChild<QLineEdit*>(field); // with "|" for the caret
            const auto caret = static_cast<int>(before.indexOf('|'));
            edit.setText(before.remove('|'));
            edit.setCursorPosition(caret);
            edit.insert(inserted);
            return edit.text().insert(edit.cursorPosition(), '|');
        };
        QCOMPARE(insert("editIpAddress", "192.168|", ","), "192.168.|");
        QCOMPARE(insert("editSubnetMask", "255|255.10.1", ","), "255.|255.10.1");
        QCOMPARE(insert("editDefaultGateway", "|", "\t192.168.10.77 \n"), "192.168.10.77|");
        QCOMPARE(insert("editIpAddress", "192|.168.10.1", " "), "192|.168.10.1");
        QCOMPARE(insert("editDefaultGateway", "192|.168", "x"), "192|.168");
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

    void aFailureIsToldInPlainSentences_data()
    {
        using enum Tessal::FailureKind;
        using enum Tessal::Setting;
        const auto row = addColumns<Tessal::Failure, QString>("failure", "told");
        const std::string camera = "192.168.1.20";
        row("busy",
            Tessal::Failure{
                .kind = Busy, .setting = TemporaryAddress, .mac = "025E41000001", .wanted = "10.0.0.9"},
            "The camera 02:5E:41:00:00:01 is busy and did not take the temporary address 10.0.0.9. Wait a moment, then try again.");
        row("kept a name that would break the line",
            Tessal::Failure{
                .kind = NotKept, .setting = Name, .address = camera, .wanted = "belt", .actual = "<b>\n%1"},
            "The camera 192.168.1.20 confirmed the new device user ID “belt” but reports “<b>\uFFFD%1”.");
        row("no way to the address",
            Tessal::Failure{.kind = CannotSend, .address = "10.9.9.9", .reason = "Network is unreachable"},
            "This computer cannot reach the address 10.9.9.9 through any of its network adapters.");
        row("refused, and no more to say",
            Tessal::Failure{
                .kind = Refused, .setting = DefaultGateway, .address = camera, .wanted = "192.168.1.1"},
            "The camera 192.168.1.20 refused the new gateway 192.168.1.1.");
        row("silent when it was read",
            Tessal::Failure{.kind = NoAnswer, .setting = DefaultGateway, .address = camera},
            "The camera 192.168.1.20 did not answer.");
        row("without an address", Tessal::Failure{.kind = NotKept, .setting = Name, .wanted = "belt"},
            "The camera confirmed the new device user ID “belt” but did not keep it.");
    }

    void aFailureIsToldInPlainSentences()
    {
        QFETCH(Tessal::Failure, failure);
        QTEST(describeFailure(failure), "told");
    }

    void aBoxTakesNoTextForMarkup()
    {
        QString details;
        QTimer::singleShot(0, [&details] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box != nullptr && box->textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
            QCOMPARE(box->textFormat(), Qt::PlainText);
            details = box->detailedText();
            QTest::keyClick(box, Qt::Key_Escape);
        });
        showException("refresh", GenICam::RuntimeException("<b>name</b>", "/src/a.cpp", 12, "x"), nullptr);
        QCOMPARE(details, "Operation: refresh\n<b>name</b> : x thrown (file '/src/a.cpp', line 12)");
    }

    void dialogTakesAddressesByKeys()
    {
        IpAddressWidget dialog;
        dialog.setIpAddress("192.168.0.");
        const auto type = [&dialog](bool withMac, const char* keys) { // goes to the end of the first field
            dialog.setShowMacAddress(withMac);
            dialog.show();
            QTest::keyClicks(dialog.focusWidget(), keys);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Home);
            dialog.hide();
        };
        type(true, "0a-x0B:0cyz1");
        type(false, "1x ");
        type(false, "7");
        QCOMPARE(dialog.macAddress(), "02-5E-41-0a-0B:0c");
        QCOMPARE(dialog.ipAddress(), "192.168.0.17");
    }

    void maskFollowsTheAddressUntilItIsTyped()
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
        QCOMPARE(maskAfter("editIpAddress", "192.88.99.8"), "240.0.0.0"); // typed, as a length
    }

    void dialogWaitsUntilAllIsComplete_data()
    {
        const auto row = addColumns<QString, QString, bool>("address", "mask", "isComplete");
        row("of no use", "224.0.0.1", "255.255.255.0", true);
        row("half an address", "192.168.1.", "255.255.255.0", false);
        row("no mask", "192.168.1.9", "", false);
    }

    void dialogWaitsUntilAllIsComplete()
    {
        QFETCH(const QString, address);
        QFETCH(const QString, mask);
        IpAddressWidget dialog;
        dialog.setIpAddress(address);
        dialog.setSubnetMask(mask);
        const QPushButton& ok = *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        QTEST(ok.isEnabled(), "isComplete");
        QTEST(ok.accessibleDescription().isEmpty() && ok.toolTip().isEmpty(), "isComplete");
    }

    void dialogNamesTheCameraOfAMacAddress()
    {
        IpAddressWidget dialog;
        advice::Surroundings surroundings;
        surroundings.cameras.push_back({"Gate", "dz", {{0x02, 0x5E, 0x41, 0x00, 0x00, 0x03}}, {}});
        dialog.setSurroundings(surroundings);
        dialog.setShowMacAddress(true);
        auto& mac = *dialog.findChild<QLineEdit*>("editMacAddress");
        const QLabel& camera = *dialog.findChild<QLabel*>("labelCamera");
        mac.setText("02-5E-41-00-00-");
        QCOMPARE(camera.text(), "");
        QVERIFY(!dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        mac.setText("02-5E-41-00-00-03");
        QCOMPARE(camera.text(), "Gate, dz, MAC address 02:5E:41:00:00:03");
        QVERIFY(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        mac.setText("02-5E-41-00-00-04");
        QCOMPARE(camera.text(), "not in the list");
    }
};

QTEST_MAIN(PlatformTest)
#include "tst_platform.moc"
