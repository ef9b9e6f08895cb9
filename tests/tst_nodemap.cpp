#include "gige/errors.h"
#include "gige/gvcp.h"
#include "gige/nodemap.h"
#include "gige/registerport.h"
#include "trace.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <map>
#include <utility>

namespace {

/// What reading a register does instead.
using Fault = void (*)();
constexpr Fault refuse = [] { gige::raise<gige::RefusalException>("no such register"); };
constexpr Fault deny = [] { gige::raise<GenICam::AccessException>("no such register"); };
constexpr Fault keepSilent = [] { gige::raise<GenICam::TimeoutException>("no such register"); };

/// The first registers of a camera, at first 0; what is beyond them is refused.
struct FakePort : gige::RegisterPort
{
    void put(std::uint32_t address, const QByteArray& data) { memory.replace(address, data.size(), data); }
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        ++reads;
        if (faults.contains(address)) {
            faults[address]();
        }
        if (std::cmp_greater(address + to.size(), memory.size())) {
            refuse();
        }
        std::copy_n(memory.cbegin() + address, to.size(), to.begin());
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        const QByteArray bytes(reinterpret_cast<const char*>(from.data()), std::ssize(from));
        written += QByteArray::number(address, 16) + ':' + QByteArray(bytes).replace('\0', '.') + ' ';
    }

    std::map<std::uint32_t, Fault> faults;
    int reads = 0;
    QByteArray written; // address and bytes, NUL shown as a dot
    QByteArray memory{0x20000, '\0'};
};

/// A description with nodes in XML or in a short form: "KIND NAME CHILD=TEXT ... | ...", where @ is the start
/// of DeviceUserID and $ also its place.
QByteArray describe(QString nodes)
{
    if (!nodes.startsWith('<')) {
        nodes.replace("$", "@ Address=0x1000 Length=16").replace("BE", "Endianess=BigEndian");
        nodes.replace("@", "StringReg DeviceUserID pPort=Device");
        nodes.replace(QRegularExpression(R"((\w+)=(\S*))"), R"(<\1>\2</\1>)");
        nodes.replace(QRegularExpression(R"((\w+) (\w+)([^|]*)\|? ?)"), R"(<\1 Name='\2'>\3</\1>)");
    }
    return R"(<?xml version="1.0"?><!DOCTYPE x [<!ENTITY e "x">]><RegisterDescription SchemaMajorVersion="1"
        xmlns="http://www.genicam.org/GenApi/Version_1_1"><Group><Group/><Port Name="Device"/></Group>)" +
           nodes.toUtf8() + "</RegisterDescription>";
}

/// What the call gives, or what it throws.
QString resultOf(const std::function<QString()>& call)
try {
    return call();
} catch (const std::exception& error) {
    return QString("thrown: ") + error.what();
}

/// Equal, or, where a failure is expected, beginning so.
void compare(const QByteArray& input, const QString& result, const QString& expected)
{
    QVERIFY2(expected.contains(": ") ? result.startsWith(expected) : result == expected,
             qPrintable(input + "\ngives " + result + "\nand not " + expected));
}

const QString useless = "16 warning: The camera's description cannot be used (first URL: ";

/// How long DeviceUserID may be or what is said instead, and the trace.
QString lengthOfName(gige::RegisterPort& port)
{
    const TraceCapture trace;
    QString result = resultOf([&port] {
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        return name ? QString::number(name->GetMaxLength()) : "none";
    });
    for (const auto& line : trace.lines("Lanvic.Camera.NodeMap")) {
        result += (line.level == QtWarningMsg ? " warning: " : " other: ") + line.text;
    }
    return result;
}

/// Of DeviceUserID: the nodes, what is read and what is written by "new", both with verification.
struct TextFeature
{
    QByteArray nodes;
    QString read = "camera";
    QString written = "1000:new............. ";
};

const QString readOnly = "thrown: The feature 'DeviceUserID' cannot be written at present. : AccessException";
const QString hidden = "thrown: The feature 'DeviceUserID' cannot be read at present. : AccessException";
const QString missing = "thrown: NULL pointer dereferenced : LogicalErrorException";
const QByteArray byA = "@ pAddress=A Length=16 | ";

const std::initializer_list<TextFeature> usableFeatures{
    {"$"},
    {"<g:Group><g:Group><g:StringReg Name='DeviceUserID'><g:Address>4096</g:Address><g:Length> "
     "16\n</g:Length></g:StringReg></g:Group></g:Group><StringReg Name='DeviceUserID'/>"},
    {"@ Address=20 pAddress=A Address=-4 pLength=L | Integer A pValue=B | Integer B Value=0xFF0 | "
     "Integer L Value=16"},
    {byA + "IntReg A Address=0x2000 Length=4 BE"},
    {byA + "IntReg A Address=0x2004 Length=2"},
    {"@ Address=0xF02 pAddress=U pAddress=S Length=16 | IntReg U Address=0x2008 Length=1 | "
     "IntReg S Address=0x2008 Length=1 Sign=Signed"},
    {byA + "MaskedIntReg A Address=0x200C Length=4 LSB=23 MSB=8 BE"},
    {byA + "MaskedIntReg A Address=0x2010 Length=8 LSB=8 MSB=23"},
    {"String DeviceUserID pValue=R | StringReg R Address=0x1000 Length=16"},
    {"String DeviceUserID pValue=R | StringReg R Address=0x1000 Length=16 pIsLocked=T | Boolean T Value=true",
     "camera", readOnly},
    {"<String Name='DeviceUserID'><Value>a &lt;&#98;&gt;&e;</Value></String>", "a <b>&e;", readOnly},
    {"@ Address=0x1000 Length=3", "cam", "1000:newe "},
    {"@ Address=0x1001 Length=3", "ame", "1000:cnew "},
    {"@ Address=0x1002 Length=4", "mera", "1000:canew... "},
    {"$ AccessMode=RW ImposedAccessMode=RO", "camera", readOnly},
    {"$ AccessMode=WO", hidden},
    {"$ pIsAvailable=C | IntReg C Address=0x2018 Length=4", hidden, readOnly},
    {"$ pIsImplemented=C | Integer C Value=0", hidden, readOnly},
    {"$ pIsLocked=C | MaskedIntReg C Address=0x201C Length=4 Bit=0 BE", "camera", readOnly},
    {"$ pIsLocked=C | Boolean C pValue=V | Integer V Value=1", "camera", readOnly},
    {"$ pIsLocked=C | Boolean C pValue=V OnValue=2 | Integer V Value=1"},
    {"$ pIsLocked=C | IntSwissKnife C Formula=1"}, // of no use, like the next two
    {"$ pIsLocked=C | IntReg C Address=0x90000 Length=4"},
    {"$ pIsLocked=C | IntReg C Address=0x9000 Length=4"},
    {"Integer DeviceUserID Value=1", missing, missing},
};

/// With the node at fault and what is said of it.
const std::initializer_list<std::pair<QByteArray, QString>> uselessFeatures{
    {"@ Length=16", "DeviceUserID' has no address"},
    {"@ Address=1,2 Length=16", "DeviceUserID' has '1,2' for a number"},
    {"@ Address=0 Length=65537", "DeviceUserID' has a length of 65537 bytes"},
    {"@ Address=-4 Length=4", "DeviceUserID' has no place"},
    {"@ Address=0xFFFFFFFF Length=2", "DeviceUserID' has no place"},
    {"@ Address=0x1000", "DeviceUserID' has no place"},
    {"@ Address=0 IntSwissKnife= Length=4", "DeviceUserID' has an address with IntSwissKnife"},
    {"@ Address=0 pIndex=A Length=4", "DeviceUserID' has an address with pIndex"},
    {byA, "DeviceUserID' refers to 'A', which does not exist"},
    {byA + "Integer A pValue=A", "A' refers to too many nodes or to itself"},
    {byA + "MaskedIntReg A Address=0x2000 Length=4 Bit=32", "A' has a bit field outside of its register"},
    {"StringReg DeviceUserID Address=0 Length=4 pPort=P | Port P ChunkID=1", "DeviceUserID' does not lie"},
    {"String DeviceUserID pValue=A | Integer A Value=1", "A' is no text"},
};

void checkTextFeature(const TextFeature& row)
{
    FakePort port;
    const QByteArray xml = describe(row.nodes);
    port.put(gvcp::Register::FirstUrl, "Local:a.xml;10000;" + QByteArray::number(xml.size(), 16));
    port.put(0x10000, xml);
    port.put(0x1000, "camera");
    port.put(0x2000,
             QByteArray::fromHex("00001000 00100000 FF000000 5A10005A 5A00105A5A5A5A5A 00000000 80000000"));
    port.faults[0x9000] = deny;
    const auto map = gige::makeNodeMap(port);
    QCOMPARE(port.reads, 0); // who asks for no feature need not wait for the description
    const auto name = [&map] { return GenApi::CPointer<GenApi::IString>(map->GetNode("DeviceUserID")); };
    QCOMPARE(name().IsValid(), row.read != missing);
    QCOMPARE(port.reads, 2); // its URL and itself, once
    compare(row.nodes, resultOf([&] { return QString(name()->GetValue(true).c_str()); }), row.read);
    const QString written = resultOf([&] {
        name()->SetValue("new");
        return QString(port.written);
    });
    compare(row.nodes, written, row.written);
    QCOMPARE(port.written.isEmpty(), row.written.startsWith("thrown"));
}

} // namespace

class TestNodeMap : public QObject
{
    Q_OBJECT

private slots:
    void descriptionComesFromTheFirstUsableUrl()
    {
        const QByteArray xml = describe("@ Address=0 Length=24") + QByteArray(3, '\0');
        const QByteArray good = "Local:a.xml;A000;#";
        const QByteArray length = QByteArray::number(xml.size(), 16); // in place of #
        const QString none =
            "none" + useless.mid(2) + "no such register; second URL: no such register). The camera has no";
        for (const auto& [first, second, expected, faults] : std::initializer_list<
                 std::tuple<QByteArray, QByteArray, QString, std::map<std::uint32_t, Fault>>>{
                 {good, "", "24", {}},
                 {"LOCAL:///a.XML;0xA000;0X#?SchemaVersion=1.1.0", "", "24", {}},
                 {" local: my a.xml ; 0000a000 ; # \r\n", "", "24", {}},
                 {"http://a/b.xml", good, "24", {}},
                 {"Local:a.xml;B000;b", good, "24", {}},
                 {"", "", useless + "the URL is empty; second URL: the URL is empty). DeviceUserID is", {}},
                 {"File:C:\\a.xml", "", useless + "'File:C:\\a.xml' is not in the camera", {}},
                 {"Local:a.xml;10g;10", "", useless + "'10g' is no hexadecimal number", {}},
                 {"Local:a.xml;FFFFFFFF;2", "", useless + "'Local:a.xml;FFFFFFFF;2' names no place", {}},
                 {"Local:a.xml;A000;800001", "", useless + "'a.xml' is larger than 8388608 bytes", {}},
                 {"Local:a.xml;C000;4", "", useless + "the XML is malformed at byte", {}},
                 {good, good, none, {{0x200, refuse}, {0x400, deny}, {0x934, refuse}}},
                 {good, good, none, {{0x200, deny}, {0x400, refuse}, {0x934, deny}}},
                 {good, good, "thrown: no such register : TimeoutException", {{0x200, keepSilent}}},
             }) {
            FakePort port;
            port.put(gvcp::Register::FirstUrl, QByteArray(first).replace("#", length));
            port.put(gvcp::Register::SecondUrl, QByteArray(second).replace("#", length));
            port.put(gvcp::Register::Capability, "\x80");
            port.put(0xA000, xml);
            port.put(0xB000, "<svg></svg>");
            port.put(0xC000, "<a<b");
            port.faults = faults;
            compare(first + ' ' + second, lengthOfName(port), expected);
        }
    }

    void zipGivesItsXmlAndBelievesNoSize()
    {
        const QString unusable = useless + "the zip archive cannot be used: ";
        for (const auto& [name, expected] : std::initializer_list<std::pair<const char*, QString>>{
                 {"stored", "15"},
                 {"deflated", "15"},
                 {"two", "15"},
                 {"padded", "15"},
                 {"other-name", "15"},
                 {"claims-4-bytes", "15"},
                 {"no-xml", unusable + "it holds 2 files and none is XML"},
                 {"lzma", unusable + "its file is neither stored nor deflated"},
                 {"wrong-checksum", unusable + "CRC"},
                 {"cut", unusable + "Not a zip"},
                 {"bomb", unusable + "its file has more than 16777216 bytes"},
             }) {
            QFile file(QFINDTESTDATA(QString("fuzz/seeds/fuzz_zip/%1.zip").arg(name)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            FakePort port;
            port.put(gvcp::Register::FirstUrl, "Local:A.Zip;A000;" + QByteArray::number(file.size(), 16));
            port.put(gvcp::Register::Capability, "\x80");
            port.put(0xA000, file.readAll());
            compare(name, lengthOfName(port), expected);
        }
    }

    void textFeatures()
    {
        for (const TextFeature& row : usableFeatures) {
            checkTextFeature(row);
        }
        for (const auto& [brief, why] : uselessFeatures) {
            const QString thrown =
                "thrown: The feature 'DeviceUserID' cannot be used: in the camera's description, node '" +
                why;
            checkTextFeature({brief, thrown, thrown});
        }
    }

    void theStandardNameRegister()
    {
        FakePort port;
        port.put(gvcp::Register::Capability, "\x7F\xFF\xFF\xFF");
        QVERIFY(gige::makeNodeMap(port)->GetNode("DeviceUserID") == nullptr);
        port.put(gvcp::Register::Capability, "\x80");
        port.put(gvcp::Register::UserDefinedName, "sixteen bytes...");
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        QCOMPARE(map->GetNode("DeviceUserID")->GetName().c_str(), "DeviceUserID");
        QVERIFY(map->GetNode("Width") == nullptr);
        QCOMPARE(name->GetValue().c_str(), "sixteen bytes...");
        port.reads = 0;
        QVERIFY_THROWS_EXCEPTION(GenICam::InvalidArgumentException,
                                 name->SetValue("seventeen bytes..", false));
        name->SetValue(" Kölner Dom 12 ");
        QCOMPARE(port.written, "e8: Kölner Dom 12  ");
        QCOMPARE(port.reads, 0);
    }
};

QTEST_GUILESS_MAIN(TestNodeMap)
#include "tst_nodemap.moc"
