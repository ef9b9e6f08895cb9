#include "DeviceLister.h"
#include "options.h"
#include "support/columns.h"

#include "tessal/transportlayer.h"

#include <QJsonDocument>
#include <QTest>

using namespace cli;

/// What the command line makes of texts: plans, options and lists. Nothing here needs a network.
class CommandLineTest : public QObject
{
    Q_OBJECT

    /// Cameras 1, 2, … behind lab0, with the addresses 192.168.10.21, 22, …; the fifth is in another network.
    /// The computer has 192.168.10.251 too, and a route through 192.168.10.252.
    static Network bench()
    {
        Network network;
        const net::Ipv4 mask{0xFFFFFF00};
        network.surroundings.adapters = {{.name = "lab0", .subnets = {{{0xC0A80A01}, mask}}},
                                         {.name = "lab1", .subnets = {{{0xC0A80AFB}, mask}}}};
        network.gateways = {{0xC0A80AFC}};
        for (std::uint8_t i = 1; i <= 9; ++i) {
            const net::Ipv4 address{i == 5 ? 0xAC100409U : 0xC0A80A14U + i};
            network.cameras.push_back(
                {.mac = {{2, 0, 0, 0, 0, i}},
                 .serial = QString::number(i),
                 .name = i == 2 ? QString("gate, \"left\"\x02") : "camera " + QString::number(i),
                 .model = "km-1300",
                 .adapter = "lab0",
                 .mode = Mode::Static,
                 .address = address,
                 .mask = mask,
                 .accessibility = i == 5 ? Tessal::Accessibility::NotReachable : Tessal::Accessibility::Ok});
            network.surroundings.cameras.push_back({{}, {}, {{2, 0, 0, 0, 0, i}}, address});
        }
        return network;
    }

    static QStringList told(const std::vector<Finding>& findings)
    {
        QStringList lines;
        for (const Finding& finding : findings) {
            lines += QString("%1:%2 ").arg(finding.place.line).arg(finding.place.column) + finding.text +
                     (finding.canBeForced ? " (--force)" : "");
        }
        return lines;
    }

    /// What is wrong with the plan below the names of the columns, or else what it would change.
    static QStringList outcomeOf(const QByteArray& lines)
    {
        Network network = bench();
        network.cameras[3].adapter = network.cameras[5].adapter = "lab9"; // Of which nothing is known.
        network.cameras[2].mode = network.cameras[6].mode = Mode::AutoIp;
        network.cameras[6].address = {0xA9FE0102};
        network.cameras[6].serial = "8";
        network.cameras[8].isMacShared = true;
        const Plan plan = parsePlan("mac,serial,mode,address,mask,gateway,name\n" + lines);
        const CheckedPlan checked = plan.findings.empty() ? checkPlan(plan.rows, network) : CheckedPlan{};
        QStringList all = told(plan.findings) + told(checked.findings);
        for (const Change& change : all.isEmpty() ? checked.changes : std::vector<Change>()) {
            all += text(change);
        }
        return all;
    }

private slots:
    void anAdapterIsNamedAsTheSystemDoes()
    {
        Tessal::COrvikGigEDeviceInfo record;
        record.SetPropertyValue(ListerKey::InterfaceName, "l\u00C3\u00A4b0"); // Byte by byte, as from Qt.
        QCOMPARE(cameraOf(record).adapter, "l\u00E4b0");
    }

    void planErrorsNameLineAndColumn_data()
    {
        const auto row = addColumns<QByteArray, QStringList>("lines", "told");
        row("lines that cannot be read",
            "020000000001,static\r\n,,dhcp,,,,\r\n0200,,bootp,,,,\r\n020000000001,,,192.168.10,25.0,x,Förderband Nr. 1\r\n"
            ",1,static,192.168.10.31/24,24,,\r\n,1,static,,24,,",
            {"2:14 the line has 2 fields, the first line has 7",
             "3:1 a MAC address or a serial number is needed to identify the camera",
             "4:1 \"0200\" is not a MAC address",
             "4:7 \"bootp\" is not a mode: static, dhcp, auto-ip or temporary",
             "5:16 \"192.168.10\": an IP address is needed, such as 192.168.10.21",
             "5:27 \"25.0\": a mask is needed, such as 255.255.255.0 or /24",
             "5:32 \"x\": a gateway is an IP address, or left out", "5:34 the name is longer than 16 bytes",
             "6:28 \"24\": the address has a mask already",
             "7:11 an IP address is needed, such as 192.168.10.21"});
        row("a quote that is never closed", "\n\n020000000001,,dhcp,,,,\n\"ä\",\"",
            {"5:5 a quote that is never closed"});
        row("text after a quote", "\"ä\"b", {"2:4 text after a closing quote"});
        row("a quote in the middle", "a\"b\"",
            {"2:2 a quote inside of a field that does not begin with one"});
        row("a missing camera", "0200000000AA,,dhcp,,,,",
            {"2:1 no camera was found that has the MAC address 02:00:00:00:00:AA (--force)"});
        row("another serial number", "020000000001,2,dhcp,,,,",
            {"2:14 the camera 02:00:00:00:00:01 (camera 1) has the serial number 1"});
        row("a camera twice", "020000000001,,dhcp,,,,\n,1,auto-ip,,,,",
            {"3:2 line 2 refers to the same camera"});
        const QString taken(
            " is the address of another camera: MAC address 02:00:00:00:00:0%1. With the same "
            "address, neither can be reached reliably.");
        row("an address twice", ",1,,192.168.10.31,24,,\n,2,,192.168.10.31,24,,",
            {"2:5 192.168.10.31" + taken.arg(2) + " (Line 3.)",
             "3:5 192.168.10.31" + taken.arg(1) + " (Line 2.)"});
        row("a camera that is not listed twice",
            "0200000000AA,,temporary,192.168.10.31,24,,\n0200000000AA,,temporary,192.168.10.32,24,,",
            {"3:1 line 2 refers to the same camera"});
        row("an address twice where one camera is not listed",
            "0200000000AA,,temporary,192.168.10.31,24,,\n,1,,192.168.10.31,24,,",
            {"2:25 192.168.10.31" + taken.arg(1) + " (Line 3.)",
             "3:5 192.168.10.31" + QString(taken).replace("0%1", "AA") + " (Line 2.)"});
        row("the address of a camera outside of the plan", ",1,,192.168.10.23,24,,",
            {"2:5 192.168.10.23" + taken.arg(3)});
        row("the computer's address, a gateway outside", ",1,,192.168.10.1,24,10.0.0.1,",
            {"2:5 192.168.10.1 is this computer's own address on lab0. A camera with it cannot be reached.",
             "2:21 The gateway 10.0.0.1 is not in the camera's network. Leave the field empty if there is no router. (--force)"});
        row("no free temporary address", ",4,,192.168.10.26,24,,\n,6,,192.168.10.24,24,,",
            {"2:5 cameras wait for each other's addresses, and no temporary address is free"});
        row("several cameras", ",8,dhcp,,,,\n020000000009,,dhcp,,,,",
            {"2:2 several cameras have the serial number 8",
             "3:1 several cameras have the MAC address 02:00:00:00:00:09"});
        row("outside, and none", ",1,,172.16.0.1,24,,\n0200000000AA,,temporary,0.0.0.0,24,,",
            {"2:5 172.16.0.1 is in no network of lab0. The camera can then not be reached through lab0. (--force)",
             "3:25 Without an address, the camera restarts its IP configuration."});
        row("masks", ",1,,192.168.10.31,32,,\n,2,,192.168.10.32,0,,",
            {"2:19 lab0 has the mask 255.255.255.0 in this network. With another one, applications may not find the "
             "camera. (--force)",
             "3:19 0.0.0.0 is not a subnet mask. A valid one is, for example, 255.255.255.0."});
    }

    void planErrorsNameLineAndColumn()
    {
        QFETCH(const QByteArray, lines);
        QTEST(outcomeOf(lines), "told");
    }

    void aPlanSaysWhatItWouldChange_data()
    {
        const auto row = addColumns<QByteArray, QStringList>("lines", "told");
        row("nothing wrong",
            "020000000001,,,192.168.10.31,24,,\n,2,dhcp,,,,\n,5,static,192.168.10.32/24,,192.168.10.1,Förderband Nr 1",
            {"static 192.168.10.21/24 -> static 192.168.10.31/24", "static 192.168.10.22/24 -> dhcp",
             "static 172.16.4.9/24 -> static 192.168.10.32/24 gateway 192.168.10.1, "
             "name \"camera 5\" -> \"Förderband Nr 1\""});
        row("the address that a camera of the plan leaves", ",1,,192.168.10.22,24,,\n,2,dhcp,,,,",
            {"static 192.168.10.21/24 -> static 192.168.10.22/24", "static 192.168.10.22/24 -> dhcp"});
        row("set already, and not restarted since",
            "020000000003,,auto-ip,,,,\n020000000007,,auto-ip,,,,\n,1,unknown,,,,\n,2,,192.168.10.22,24,192.168.10.1,",
            {"auto-ip 192.168.10.23/24 -> auto-ip", "", "",
             "static 192.168.10.22/24 -> static 192.168.10.22/24 gateway 192.168.10.1"});
        row("a swap", ",1,,192.168.10.22,24,,\n,2,,192.168.10.21,24,,",
            {"static 192.168.10.21/24 -> static 192.168.10.22/24, temporarily 192.168.10.253",
             "static 192.168.10.22/24 -> static 192.168.10.21/24"});
    }

    void aPlanSaysWhatItWouldChange()
    {
        QFETCH(const QByteArray, lines);
        QTEST(outcomeOf(lines), "told");
    }

    void aPlanSaysWhichCamerasItMeans()
    {
        QCOMPARE(told(parsePlan("").findings), QStringList{"1:1 the plan is empty"});
        QCOMPARE(told(parsePlan("mac\n\xFF").findings), QStringList{"1:1 the plan is not UTF-8"});
        QCOMPARE(
            told(parsePlan("Mode; address;speed;Mode\n").findings),
            (QStringList{"1:15 there is no column \"speed\"", "1:21 there is a column for \"mode\" already",
                         "1:1 no column \"mac\" or \"serial\" says which camera is meant"}));
    }

    void camerasThatWaitForEachOtherMakeRoom_data()
    {
        // plan: Serial number and address.
        const auto row = addColumns<QByteArray, QStringList>("plan", "temporary");
        row("a swap", QByteArray("1,22\n2,21"), QStringList{"1 192.168.10.253"});
        row("two circles", QByteArray("1,22\n2,23\n3,21\n4,26\n6,24"),
            QStringList{"2 192.168.10.253", "4 192.168.10.250"});
        row("a short row", QByteArray("1,22\n2,23\n3,24\n4,25"), QStringList{});
        row("a long row", QByteArray("1,22\n2,23\n3,24\n4,26\n6,27\n7,28\n8,29\n9,30"),
            QStringList{"4 192.168.10.253"});
        row("a swap beside a taken address", QByteArray("1,22\n2,21\n3,253"),
            QStringList{"1 192.168.10.250"});
        row("out of reach", QByteArray("5,40"), QStringList{"5 192.168.10.253"});
        row("out of reach, to the address below the highest", QByteArray("5,253"),
            QStringList{"5 192.168.10.250"});
    }

    void camerasThatWaitForEachOtherMakeRoom()
    {
        QFETCH(QByteArray, plan);
        const auto rows = parsePlan("serial,address,mask\n" +
                                    plan.replace(",", ",192.168.10.").replace("\n", ",24\n") + ",24")
                              .rows;
        QStringList temporary;
        for (const Change& change : checkPlan(rows, bench()).changes) {
            if (change.temporary) {
                temporary += change.camera.serial + " " + text(change.temporary->address);
            }
        }
        QTEST(temporary, "temporary");
    }

    void aListIsAPlanThatChangesNothing_data()
    {
        Network network = bench();
        const QByteArray list = formatList(network, Format::Csv, 0).toUtf8();
        network.cameras.push_back(network.cameras.front());
        network.cameras.back().adapter = "lab1";
        const auto row = addColumns<QByteArray>("plan");
        row("as written", list);
        row("with a camera that two adapters hear", formatList(network, Format::Csv, 0).toUtf8());
        row("saved by a spreadsheet", "\xEF\xBB\xBF" + QByteArray(list).replace("\n", "\r\n"));
    }

    void aListIsAPlanThatChangesNothing()
    {
        QFETCH(QByteArray, plan);
        const Plan parsed = parsePlan(plan);
        QCOMPARE(told(parsed.findings), QStringList());
        QCOMPARE(parsed.rows.size(), bench().cameras.size());
        for (const Change& change : checkPlan(parsed.rows, bench()).changes) {
            QCOMPARE(text(change), QString());
        }
    }

    void aListIsFormatted_data()
    {
        // width: In columns; 0 for any.
        const auto row = addColumns<Format, int, QString>("format", "width", "list");
        const QString full =
            "  NAME           MODEL    SERIAL  MAC                STATUS  MODE    ADDRESS         \n"
            "lab0  192.168.10.1/24\n"
            "  camera 1       km-1300  1       02:00:00:00:00:01  ok      static  192.168.10.21/24\n"
            "  gate, \"left\"\uFFFD  km-1300  2       02:00:00:00:00:02  ok      static  192.168.10.22/24\n"
            "lab1  192.168.10.251/24\n";
        row("a table", Format::Table, 0, full);
        row("a table that just fits", Format::Table, 85, full);
        row("a name that is cut", Format::Table, 84,
            QString(full)
                .replace("NAME  ", "NAME ")
                .replace("camera 1 ", "camera 1")
                .replace("t\"\uFFFD", "t\u2026"));
        row("no room for models", Format::Table, 56,
            "  NAME    MAC                STATUS  MODE    ADDRESS         \n"
            "lab0  192.168.10.1/24\n"
            "  camer\u2026  02:00:00:00:00:01  ok      static  192.168.10.21/24\n"
            "  gate,\u2026  02:00:00:00:00:02  ok      static  192.168.10.22/24\n"
            "lab1  192.168.10.251/24\n");
        const QString json =
            R"({"address":"192.168.10.2%1","gateway":"0.0.0.0","mac":"02:00:00:00:00:0%1","mask":"255.255.255.0",)"
            R"("mode":"static","model":"km-1300","name":"%2","serial":"%1","status":"ok","vendor":""})";
        row("JSON", Format::Json, 0,
            R"({"adapters":[{"addresses":["192.168.10.1/24"],"cameras":[)" + json.arg(1).arg("camera 1") +
                ',' + json.arg(2).arg(R"(gate, \"left\"\u0002)") +
                R"(],"name":"lab0"},{"addresses":["192.168.10.251/24"],"cameras":[],"name":"lab1"}]})");
    }

    void aListIsFormatted()
    {
        QFETCH(const Format, format);
        QFETCH(const int, width);
        Network network = bench();
        network.cameras.resize(2);
        QString list = formatList(network, format, width);
        if (format == Format::Json) {
            list = QJsonDocument::fromJson(list.toUtf8()).toJson(QJsonDocument::Compact);
        }
        QTEST(list, "list");
    }

    void anAmbiguousOperandMatchesSeveralCameras()
    {
        QCOMPARE(camerasMeantBy("02-00-00-00-00-03", bench().cameras).size(), 1U);
        QCOMPARE(camerasMeantBy("camera 3", bench().cameras).size(), 1U);
        Network network = bench();
        network.cameras[3].name = "3"; // Which is a serial number as well.
        QCOMPARE(camerasMeantBy("3", network.cameras).size(), 2U);
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "tst_commandline.moc"
