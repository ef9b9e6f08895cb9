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

struct ShownBox
{
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString title;
    QString text;
    QString details;
    Qt::TextFormat format = Qt::AutoText;
    QSize labelSize;
};

/// Runs `show`, which opens a message box, and returns what the box showed before Escape closed it.
template <typename Show>
ShownBox boxOf(const Show& show)
{
    ShownBox shown;
    QTimer::singleShot(0, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box != nullptr) {
            const auto* const label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
            shown = {box->icon(),         box->windowTitle(),  box->text(),
                     box->detailedText(), label->textFormat(), label->sizeHint()};
            QTest::keyClick(box, Qt::Key_Escape);
        }
    });
    show();
    return shown;
}

/// What a validator says of a text: a, i or n for Acceptable, Intermediate or Invalid.
char verdict(const QValidator& validator, QString text)
{
    int pos = 0;
    switch (validator.validate(text, pos)) {
    case QValidator::Acceptable:
        return 'a';
    case QValidator::Intermediate:
        return 'i';
    default:
        return 'n';
    }
}

} // namespace

class PlatformTest : public QObject
{
    Q_OBJECT

private slots:
    void dottedQuadsAreStrict_data();
    void dottedQuadsAreStrict();
    void macAddressesAreReadAndShown();
    void addressesAreJudgedUnderTheMask_data();
    void addressesAreJudgedUnderTheMask();
    void masksAreJudgedAndFixed_data();
    void masksAreJudgedAndFixed();
    void modesAreShown();
    void maskComesFromTheClass();
    void recordsCompare();
    void traceLinesHaveLevelsAndNoControlCharacters();
    void textsOfCamerasAreNoMarkup();
    void boxesTellWhatFailed();
    void dialogIsFilledByKeys();
    void maskFollowsUntilTyped();
    void supportInfoHoldsNoIdentity();
};

void PlatformTest::dottedQuadsAreStrict_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    for (const char* refused : {"", "1", "192.168.1", "1.2.3.4.5", "1.2.3.", ".1.2.3", "1..2.3", "256.1.1.1",
                                "1.2.3.0004", " 1.2.3.4", "1.2.3.4 ", "+1.2.3.4", "-1.2.3.4", "0x1.2.3.4",
                                "1,2,3,4", "fe80::1", "١.٢.٣.٤", "1.2.3.٤"}) {
        QTest::newRow(refused) << QString::fromUtf8(refused) << QString();
    }
    QTest::newRow("plain") << "192.168.1.20"
                           << "192.168.1.20";
    QTest::newRow("zeros") << "0.0.0.0"
                           << "0.0.0.0";
    QTest::newRow("ones") << "255.255.255.255"
                          << "255.255.255.255";
    QTest::newRow("leading zeros are decimal") << "010.001.000.099"
                                               << "10.1.0.99";
}

void PlatformTest::dottedQuadsAreStrict()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    QCOMPARE(addressFromText(text).toString(), address);
}

void PlatformTest::macAddressesAreReadAndShown()
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

void PlatformTest::addressesAreJudgedUnderTheMask_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("accepted");
    QTest::addColumn<QString>("intermediate");
    QTest::newRow("/24") << "255.255.255.0"
                         << "192.168.1.1 192.168.1.254 192.168.001.010 224.0.0.1"
                         << "192.168.1.0 192.168.1.255 0.0.0.0 192.168.1. 192..1.1 256.1.1.1 1.2.3.4.5";
    QTest::newRow("/20") << "255.255.240.0"
                         << "172.16.1.0 172.16.0.255"
                         << "172.16.0.0 172.16.15.255";
    QTest::newRow("/31") << "255.255.255.254"
                         << "10.0.0.0 10.0.0.1"
                         << "0.0.0.0";
    QTest::newRow("/32") << "255.255.255.255"
                         << "10.0.0.0 10.0.0.255"
                         << "0.0.0.0";
    QTest::newRow("no mask yet") << "255.255."
                                 << "10.0.0.0 10.0.0.255"
                                 << "0.0.0.0 10.0.0";
    QTest::newRow("not contiguous") << "255.0.255.0"
                                    << "10.0.0.0"
                                    << "0.0.0.0";
}

void PlatformTest::addressesAreJudgedUnderTheMask()
{
    QFETCH(QString, mask);
    QFETCH(QString, accepted);
    QFETCH(QString, intermediate);
    QLineEdit maskEdit(mask);
    QIpAddressWithNetmaskValidator validator(&maskEdit, nullptr);
    for (const QString& text : accepted.split(' ')) {
        QVERIFY2(verdict(validator, text) == 'a', qPrintable(text));
    }
    for (const QString& text : intermediate.split(' ')) {
        QVERIFY2(verdict(validator, text) == 'i', qPrintable(text));
    }
    for (const char* text : {"10.0.0.1 ", "10.0.0.x", "10,0", "-1", "1/8", "١"}) {
        QVERIFY2(verdict(validator, QString::fromUtf8(text)) == 'n', text);
    }
    QCOMPARE(verdict(validator, QString()), 'i');
    validator.setAllowNullAddress(true);
    QCOMPARE(verdict(validator, QString()), 'a');
    QCOMPARE(verdict(validator, "0.0.0.0"), 'a');
}

void PlatformTest::masksAreJudgedAndFixed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<char>("expected");
    QTest::addColumn<QString>("fixed"); // empty: left as it is
    QTest::newRow("/24") << "255.255.255.0" << 'a' << "";
    QTest::newRow("one bit") << "128.0.0.0" << 'a' << "";
    QTest::newRow("all bits") << "255.255.255.255" << 'a' << "";
    QTest::newRow("leading zeros") << "255.255.000.000" << 'a' << "255.255.0.0";
    QTest::newRow("hole") << "255.0.255.0" << 'i' << "";
    QTest::newRow("inverted") << "0.0.0.255" << 'i' << "";
    QTest::newRow("no bits") << "0.0.0.0" << 'i' << "";
    QTest::newRow("half-typed") << "255.255." << 'i' << "";
    QTest::newRow("length") << "24" << 'i' << "255.255.255.0";
    QTest::newRow("slash and length") << "/9" << 'i' << "255.128.0.0";
    QTest::newRow("longest") << "/32" << 'i' << "255.255.255.255";
    QTest::newRow("too long") << "33" << 'i' << "";
    QTest::newRow("zero length") << "/0" << 'i' << "";
    QTest::newRow("slash") << "/" << 'i' << "";
    QTest::newRow("empty") << "" << 'i' << "";
    QTest::newRow("slash inside") << "2/4" << 'n' << "";
    QTest::newRow("quad after slash") << "/255.0" << 'n' << "";
    QTest::newRow("letters") << "255.x" << 'n' << "";
}

void PlatformTest::masksAreJudgedAndFixed()
{
    QFETCH(QString, text);
    QFETCH(char, expected);
    QFETCH(QString, fixed);
    const QIpNetmaskValidator validator(nullptr);
    QCOMPARE(verdict(validator, text), expected);
    QString fixup = text;
    validator.fixup(fixup);
    QCOMPARE(fixup, fixed.isEmpty() ? text : fixed);
}

void PlatformTest::modesAreShown()
{
    QCOMPARE(formatIPConfiguration("5", 1), "Static IP");
    QCOMPARE(formatIPConfiguration("6", 1), "DHCP");
    QCOMPARE(formatIPConfiguration("4", 1), "Auto IP (LLA)");
    QCOMPARE(formatIPConfiguration("7", 0), "Static IP, DHCP, Auto IP (LLA)");
    for (const char* none : {"", "0", "8", "x", "5x", "-1", static_cast<const char*>(nullptr)}) {
        QCOMPARE(formatIPConfiguration(none, 1), "Unknown");
    }
}

void PlatformTest::maskComesFromTheClass()
{
    const auto maskOf = [](const char* address) {
        return IpAddressWidget::subnetFromAddress(QHostAddress(QLatin1String(address))).toString();
    };
    // On no host: the end of two old classes, and a network for documentation.
    QCOMPARE(maskOf("126.255.255.1"), "255.0.0.0");
    QCOMPARE(maskOf("191.255.0.1"), "255.255.0.0");
    QCOMPARE(maskOf("203.0.113.1"), "255.255.255.0");
    for (const char* none : {"0.0.0.0", "0.1.2.3", "224.0.0.1", "240.0.0.1", "255.255.255.255", "fe80::1"}) {
        QCOMPARE(maskOf(none), QString());
    }
    QVERIFY(IpAddressWidget::subnetFromAddress(QHostAddress()).isNull());
}

void PlatformTest::recordsCompare()
{
    Tessal::COrvikGigEDeviceInfo record;
    record.SetPropertyValue(Tessal::Key::UserDefinedName, "K\xC3\xBC\x63he");
    record.SetIpConfigCurrent("6");
    Tessal::COrvikGigEDeviceInfo copy(record);
    QVERIFY(copy == record && copy.IsSubset(record));
    copy.SetIpAddress("192.168.1.2");
    QVERIFY(!(copy == record) && copy.IsSubset(record) && !record.IsSubset(copy));
    record.SetIpAddress("192.168.1.3");
    QVERIFY(!copy.IsSubset(record) && !record.IsSubset(copy));
    QVERIFY(!record.IsPersistentIpActive() && record.IsDhcpActive() && record.IsAutoIpActive());
    QCOMPARE(GetUtf8Property(&record, "UserDefinedName"), QString::fromUtf8("Küche"));
    QCOMPARE(GetUtf8Property(&record, "ModelName"), QString());
    QCOMPARE(GetUtf8Property(nullptr, "ModelName"), QString());
}

void PlatformTest::traceLinesHaveLevelsAndNoControlCharacters()
{
    const unsigned long base = ozlog::LogGetCatID("Lanvic.Base");
    const unsigned long other = ozlog::LogGetCatID("Lanvic.Test");
    QVERIFY(base != other && base == ozlog::LogGetCatID("Lanvic.Base"));
    const TraceCapture trace;
    ozlog::LogTrace(base, ozlog::LogLevel::Info, "MAC=%hs. Retries remaining=%i.", "a\nb\x1b[1m", -3);
    ozlog::LogTrace(base, static_cast<ozlog::LogLevel>(255), "100 %% of %hs",
                    static_cast<const char*>(nullptr));
    ozlog::LogTrace(base, ozlog::LogLevel::Error, "%u", 7u);
    ozlog::LogTrace(other, ozlog::LogLevel::Info, "not shown");
    ozlog::LogTrace(other, ozlog::LogLevel::Warning, "shown");
    const QList<TraceCapture::Line> expected{
        {"Lanvic.Base", QtInfoMsg, "MAC=a\\x0Ab\\x1B[1m. Retries remaining=-3."},
        {"Lanvic.Base", QtWarningMsg, "100 % of (null)"},
        {"Lanvic.Base", QtCriticalMsg, "7"},
        {"Lanvic.Test", QtWarningMsg, "shown"}};
    QVERIFY(trace.lines() == expected);
}

void PlatformTest::textsOfCamerasAreNoMarkup()
{
    const QString name = "<img src='x' width=900 height=900><b>name</b>";
    const std::runtime_error failure(name.toStdString());
    const QList<ShownBox> boxes{boxOf([&] { showException("refresh", failure, nullptr); }), boxOf([&] {
                                    showException("refresh", failure, "Failed to enumerate devices", nullptr);
                                }),
                                boxOf([&] { showUnexpectedException("refresh", name, nullptr); }),
                                boxOf([&] { showWarningMessage("Title", name, name, nullptr); })};
    for (const ShownBox& box : boxes) {
        QCOMPARE(box.format, Qt::PlainText);
        QVERIFY(box.text.contains(name) && box.labelSize.height() < 300);
    }
}

void PlatformTest::boxesTellWhatFailed()
{
    const GenICam::RuntimeException failure("The camera 10.0.0.2 did not answer.", "/src/a.cpp", 12,
                                            "RuntimeException");
    const ShownBox plain = boxOf([&] { showException("openDevice", failure, nullptr); });
    QCOMPARE(plain.icon, QMessageBox::Critical);
    QCOMPARE(plain.title, QGuiApplication::applicationDisplayName());
    QCOMPARE(plain.text, "The camera 10.0.0.2 did not answer.");
    QVERIFY(plain.details.contains("openDevice") && plain.details.contains(failure.what()));
    const ShownBox withText = boxOf([&] { showException("refresh", failure, "Heading", nullptr); });
    QCOMPARE(withText.text, "Heading\n\nThe camera 10.0.0.2 did not answer.");
    const ShownBox silent = boxOf([&] { showException("refresh", std::runtime_error(""), nullptr); });
    QVERIFY(!silent.text.isEmpty());
    const ShownBox warning = boxOf([&] { showWarningMessage("Connection failed", "", "In use", nullptr); });
    QCOMPARE(warning.icon, QMessageBox::Warning);
    QCOMPARE(warning.title, "Connection failed");
    QCOMPARE(warning.text, "In use");
}

void PlatformTest::dialogIsFilledByKeys()
{
    IpAddressWidget dialog;
    auto* const ip = dialog.findChild<QLineEdit*>("editIpAddress");
    auto* const mac = dialog.findChild<QLineEdit*>("editMacAddress");
    auto* const header = dialog.findChild<QLabel*>("labelHeader");
    dialog.setHeaderText("one line");
    const int oneLine = header->heightForWidth(400);
    dialog.setHeaderText("one\ntwo");
    QVERIFY(header->heightForWidth(400) > oneLine);
    dialog.setHeaderText("one<br>two");
    QVERIFY(header->heightForWidth(400) > oneLine);

    dialog.setMacAddress("025e410a0b0c");
    QCOMPARE(dialog.macAddress(), "02-5E-41-0A-0B-0C");
    dialog.setMacAddress("<unknown>");
    QCOMPARE(dialog.macAddress(), "02-5E-41-");
    dialog.setIpAddress("192.168.0.");
    dialog.setSubnetMask("255.255.255.0");
    dialog.setDefaultGateway("0.0.0.0");

    const auto fill = [&](bool withMac, const char* keys) {
        dialog.setShowMacAddress(withMac);
        QTimer::singleShot(0, [=, &dialog] {
            QCOMPARE(mac->isVisible(), withMac);
            QCOMPARE(dialog.findChild<QLabel*>("labelMacAddress")->isVisible(), withMac);
            QTest::keyClicks(dialog.focusWidget(), keys);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Home);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        });
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    };
    fill(false, "1x ");
    fill(false, "7"); // shown again, it keeps what was typed and goes on at its end
    fill(true, "0a-0B:0cxyz");
    QCOMPARE(dialog.ipAddress(), "192.168.0.17");
    QCOMPARE(dialog.subnetMask(), "255.255.255.0");
    QCOMPARE(dialog.defaultGateway(), "0.0.0.0");
    QCOMPARE(dialog.macAddress(), "02-5E-41-0a-0B:0c");

    QTimer::singleShot(0, [&] { QTest::keyClick(ip, Qt::Key_Escape); });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
}

void PlatformTest::maskFollowsUntilTyped()
{
    IpAddressWidget dialog;
    auto* const ip = dialog.findChild<QLineEdit*>("editIpAddress");
    auto* const mask = dialog.findChild<QLineEdit*>("editSubnetMask");
    const auto retype = [](QLineEdit* edit, const QString& text) {
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    };
    dialog.setSubnetMask("255.255.255.0");
    retype(ip, "191.255.0.");
    QCOMPARE(dialog.subnetMask(), "255.255.255.0");
    retype(ip, "191.255.0.1");
    QCOMPARE(dialog.subnetMask(), "255.255.0.0");
    retype(mask, "255.255.128.0");
    retype(ip, "203.0.113.1");
    QCOMPARE(dialog.subnetMask(), "255.255.128.0");
    retype(mask, "");
    retype(ip, "203.0.113.2");
    QCOMPARE(dialog.subnetMask(), "255.255.255.0");
}

void PlatformTest::supportInfoHoldsNoIdentity()
{
    const QString info = GetOrvikSupportInfo(true);
    QVERIFY(info.contains("support@orvik.example") && info.contains(qVersion()));
    const auto adapters = QNetworkInterface::allInterfaces();
    QVERIFY(!adapters.isEmpty());
    for (const QNetworkInterface& adapter : adapters) {
        QVERIFY(adapter.hardwareAddress().isEmpty() || adapter.hardwareAddress() == "00:00:00:00:00:00" ||
                !info.contains(adapter.hardwareAddress(), Qt::CaseInsensitive));
        QVERIFY(info.contains(QStringLiteral("MTU %1").arg(adapter.maximumTransmissionUnit())));
    }
    QVERIFY(!GetOrvikSupportInfo(false).contains("MTU"));
}

QTEST_MAIN(PlatformTest)
#include "tst_platform.moc"
