#include "errors.h"
#include "gvcp/gvcp.h"
#include "nodemap.h"
#include "registerport.h"
#include "support/trace.h"

#include <QFile>
#include <QTest>

#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace {

/// What reading a register does instead.
using Fault = void (*)(gige::RegisterPort&);
constexpr Fault refuse = [](gige::RegisterPort&) { gige::raise<gige::RefusalException>("no such register"); };
constexpr Fault deny = [](gige::RegisterPort&) { gige::raise<GenICam::AccessException>("no such register"); };
constexpr Fault keepSilent = [](gige::RegisterPort&) {
    gige::raise<GenICam::TimeoutException>("no such register");
};

constexpr Fault outlastTheLimit = [](gige::RegisterPort& port) {
    port.setDeadline(std::chrono::steady_clock::now());
    gige::raise<GenICam::TimeoutException>("no answer in time");
};

/// The first registers of a camera, at first 0; what is beyond them is refused. From 0x10000 on there is
/// memory, in which no register can be read.
struct FakePort : gige::RegisterPort
{
    void put(std::uint32_t address, const QByteArray& data) { memory.replace(address, data.size(), data); }
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        if (address >= 0x10000 && to.size() <= 4) {
            refuse(*this);
        }
        readMemory(address, to);
    }
    void readMemory(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        ++reads;
        if (faults.contains(address)) {
            faults[address](*this);
        }
        if (std::cmp_greater(address + to.size(), memory.size())) {
            refuse(*this);
        }
        std::copy_n(memory.cbegin() + address, to.size(), to.begin());
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        const QByteArray bytes(reinterpret_cast<const char*>(from.data()), std::ssize(from));
        written += QByteArray::number(address, 16) + ':' + QByteArray(bytes).replace('\0', '.') + ' ';
        if (keepsTexts) {
            put(address, bytes);
        }
    }

    std::map<std::uint32_t, Fault> faults;
    bool keepsTexts = true;
    int reads = 0;
    QByteArray written; // address and bytes, NUL shown as a dot
    QByteArray memory{0x20000, '\0'};
};

using Children = QList<std::pair<const char*, const char*>>;

/// One node of a description, for example <StringReg Name="DeviceUserID"><Length>16</Length></StringReg>.
QByteArray node(const QByteArray& kind, const QByteArray& name, const Children& children = {})
{
    QByteArray xml = '<' + kind + " Name='" + name + "'>";
    for (const auto& [child, text] : children) {
        xml += QByteArray("<") + child + '>' + text + "</" + child + '>';
    }
    return xml + "</" + kind + '>';
}

const Children place{{"Address", "0x1000"}, {"Length", "16"}};
const Children atA{{"pAddress", "A"}, {"Length", "16"}};

QByteArray userId(const Children& children)
{
    return node("StringReg", "DeviceUserID", Children{{"pPort", "Device"}} + children);
}

QByteArray descriptionOf(const QByteArray& nodes)
{
    return R"(<?xml version="1.0"?><!DOCTYPE x [<!ENTITY e "x">]><RegisterDescription SchemaMajorVersion="1"
        xmlns="http://www.genicam.org/GenApi/Version_1_1"><Group><Group/><Port Name="Device"/></Group>)" +
           nodes + "</RegisterDescription>";
}

/// What the call gives, or what it throws.
QString resultOf(const std::function<QString()>& call)
try {
    return call();
} catch (const GenICam::GenericException& error) {
    return error.GetDescription();
}

constexpr std::uint32_t fileAddress = 0x10000;

/// Lets the first URL point to a file. Its length is no multiple of what is read at once but by a word.
void putFile(FakePort& port, const QByteArray& file, const QByteArray& name = "a.xml")
{
    port.put(gvcp::Register::FirstUrl, "Local:" + name + ";10000;" + QByteArray::number(file.size(), 16));
    port.put(fileAddress, file);
}

const QString readOnly = "The feature 'DeviceUserID' cannot be written at present.";
const QString hidden = "The feature 'DeviceUserID' cannot be read at present.";
const QString camera = "camera";
const QString written = "1000:new............. ";

} // namespace

/// The features of a camera, out of the description that it carries or without one.
class TestNodeMap : public QObject
{
    Q_OBJECT

    std::optional<TraceCapture> m_trace;

    QStringList warnings()
    {
        QStringList texts;
        for (const auto& line : m_trace->lines("Lanvic.Camera.NodeMap")) {
            texts << line.text;
        }
        return texts;
    }

private slots:
    void init() { m_trace.emplace(); }
    void cleanup() { m_trace.reset(); }

    void theDescriptionComesFromTheFirstUsableUrl_data()
    {
        QTest::addColumn<QByteArray>("first"); // # stands for the length
        QTest::addColumn<QByteArray>("second");
        QTest::addColumn<QString>("whyNot"); // how the trace explains it if it is not used
        const QByteArray good = "Local:a.xml;10000;#";
        QTest::newRow("as the standard says") << good << QByteArray() << QString();
        QTest::newRow("in any letter case, with slashes, prefixes and a version")
            << QByteArray("LOCAL:///a.XML;0x10000;0X#?SchemaVersion=1.1.0") << QByteArray() << QString();
        QTest::newRow("with blanks") << QByteArray(" local: my a.xml ; 00010000 ; # \r\n") << QByteArray()
                                     << QString();
        QTest::newRow("the second") << QByteArray("http://a/b.xml") << good << QString();
        QTest::newRow("the second, as the first is no register description")
            << QByteArray("Local:a.xml;B000;b") << good << QString();
        QTest::newRow("none") << QByteArray() << QByteArray()
                              << "first URL: the URL is empty; second URL: the URL is empty";
        QTest::newRow("on a disk") << QByteArray("File:C:\\a.xml") << QByteArray()
                                   << "first URL: 'File:C:\\a.xml' is not in the camera";
        QTest::newRow("no number") << QByteArray("Local:a.xml;10g;10") << QByteArray()
                                   << "first URL: '10g' is no hexadecimal number";
        QTest::newRow("beyond the registers") << QByteArray("Local:a.xml;FFFFFFFF;2") << QByteArray()
                                              << "first URL: 'Local:a.xml;FFFFFFFF;2' names no place";
        QTest::newRow("too large") << QByteArray("Local:a.xml;A000;800001") << QByteArray()
                                   << "first URL: 'a.xml' is larger than 8388608 bytes";
        QTest::newRow("no XML") << QByteArray("Local:a.xml;C000;4") << QByteArray()
                                << "first URL: the XML is malformed at byte";
        QTest::newRow("not to be read")
            << QByteArray("Local:a.xml;40000;4") << QByteArray() << "first URL: no such register";
    }

    void theDescriptionComesFromTheFirstUsableUrl()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        QFETCH(const QString, whyNot);
        const QByteArray xml =
            descriptionOf(userId({{"Address", "0"}, {"Length", "24"}})) + QByteArray(3, '\0');
        const QByteArray length = QByteArray::number(xml.size(), 16);
        FakePort port;
        port.put(gvcp::Register::FirstUrl, first.replace("#", length));
        port.put(gvcp::Register::SecondUrl, second.replace("#", length));
        port.put(gvcp::Register::Capability, "\x80");
        port.put(fileAddress, xml);
        port.put(0xB000, "<svg></svg>");
        port.put(0xC000, "<a<b");
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        QCOMPARE(name->GetMaxLength(), whyNot.isEmpty() ? 24 : 16); // else the standard register's
        const QString told = warnings().join('\n');
        QVERIFY2(told.startsWith("The camera's description cannot be used (" + whyNot) || whyNot.isEmpty(),
                 qPrintable(told));
    }

    void zipGivesItsXmlAndBelievesNoSize_data()
    {
        QTest::addColumn<QString>("whyNot");
        for (const char* const usable :
             {"stored", "deflated", "two", "padded", "other-name", "claims-4-bytes"}) {
            QTest::newRow(usable) << QString();
        }
        QTest::newRow("no-xml") << "it holds 2 files and none is XML";
        QTest::newRow("lzma") << "its file is neither stored nor deflated";
        QTest::newRow("wrong-checksum") << "CRC";
        QTest::newRow("cut") << "Not a zip";
        QTest::newRow("bomb") << "its file has more than 8388608 bytes";
    }

    void zipGivesItsXmlAndBelievesNoSize()
    {
        QFETCH(const QString, whyNot);
        QFile file(QFINDTESTDATA(QString("fuzz/seeds/fuzz_zip/%1.zip").arg(QTest::currentDataTag())));
        QVERIFY(file.open(QIODevice::ReadOnly));
        FakePort port;
        putFile(port, file.readAll(), "A.Zip");
        port.put(gvcp::Register::Capability, "\x80");
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        QCOMPARE(name->GetMaxLength(), whyNot.isEmpty() ? 15 : 16);
        const QString told = warnings().join('\n');
        QVERIFY2(told.contains("the zip archive cannot be used: " + whyNot) || whyNot.isEmpty(),
                 qPrintable(told));
    }

    // NOLINTNEXTLINE(readability-function-size): a table, each row a case
    void aTextFeatureIsReadAndWritten_data()
    {
        QTest::addColumn<QByteArray>("nodes");
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("write"); // what is written for "new", or what is said instead
        const auto row = [](const char* name, const QByteArray& nodes, const QString& read = camera,
                            const QString& write = written) {
            QTest::newRow(name) << nodes << read << write;
        };
        row("a register", userId(place));
        row("in groups, with prefixes and blanks, the first of two",
            "<g:Group><g:Group><g:StringReg Name='DeviceUserID'><g:Address>4096</g:Address><g:Length> "
            "16\n</g:Length></g:StringReg></g:Group></g:Group><StringReg Name='DeviceUserID'/>");
        row("address and length from other nodes",
            userId({{"Address", "20"}, {"pAddress", "A"}, {"Address", "-4"}, {"pLength", "L"}}) +
                node("Integer", "A", {{"pValue", "B"}}) + node("Integer", "B", {{"Value", "0xFF0"}}) +
                node("Integer", "L", {{"Value", "16"}}));
        row("address in a big-endian register",
            userId(atA) +
                node("IntReg", "A", {{"Address", "0x2000"}, {"Length", "4"}, {"Endianess", "BigEndian"}}));
        row("address in a little-endian register",
            userId(atA) + node("IntReg", "A", {{"Address", "0x2004"}, {"Length", "2"}}));
        row("address as the sum of an unsigned and a signed byte",
            userId({{"Address", "0xF02"}, {"pAddress", "U"}, {"pAddress", "S"}, {"Length", "16"}}) +
                node("IntReg", "U", {{"Address", "0x2008"}, {"Length", "1"}}) +
                node("IntReg", "S", {{"Address", "0x2008"}, {"Length", "1"}, {"Sign", "Signed"}}));
        row("address in bits of a big-endian register", userId(atA) + node("MaskedIntReg", "A",
                                                                           {{"Address", "0x200C"},
                                                                            {"Length", "4"},
                                                                            {"LSB", "23"},
                                                                            {"MSB", "8"},
                                                                            {"Endianess", "BigEndian"}}));
        row("address in bits of a little-endian register",
            userId(atA) + node("MaskedIntReg", "A",
                               {{"Address", "0x2010"}, {"Length", "8"}, {"LSB", "8"}, {"MSB", "23"}}));
        const QByteArray referring = node("String", "DeviceUserID", {{"pValue", "R"}});
        row("a text that refers to a register", referring + node("StringReg", "R", place));
        row("locked behind the reference",
            referring + node("StringReg", "R", place + Children{{"pIsLocked", "T"}}) +
                node("Boolean", "T", {{"Value", "true"}}),
            camera, readOnly);
        row("a fixed text", "<String Name='DeviceUserID'><Value>a &lt;&#98;&gt;&e;</Value></String>",
            "a <b>&e;", readOnly);
        row("less than a word", userId({{"Address", "0x1000"}, {"Length", "3"}}), "cam", "1000:newe ");
        row("within a word", userId({{"Address", "0x1001"}, {"Length", "3"}}), "ame", "1000:cnew ");
        row("across two words", userId({{"Address", "0x1002"}, {"Length", "4"}}), "mera", "1000:canew... ");
        row("read only by imposed access",
            userId(place + Children{{"AccessMode", "RW"}, {"ImposedAccessMode", "RO"}}), camera, readOnly);
        row("write only", userId(place + Children{{"AccessMode", "WO"}}), hidden);
        row("not available",
            userId(place + Children{{"pIsAvailable", "C"}}) +
                node("IntReg", "C", {{"Address", "0x2018"}, {"Length", "4"}}),
            hidden, readOnly);
        row("not implemented",
            userId(place + Children{{"pIsImplemented", "C"}}) + node("Integer", "C", {{"Value", "0"}}),
            hidden, readOnly);
        const QByteArray lockedByC = userId(place + Children{{"pIsLocked", "C"}});
        row("locked by a bit",
            lockedByC +
                node("MaskedIntReg", "C",
                     {{"Address", "0x201C"}, {"Length", "4"}, {"Bit", "0"}, {"Endianess", "BigEndian"}}),
            camera, readOnly);
        row("locked by a boolean",
            lockedByC + node("Boolean", "C", {{"pValue", "V"}}) + node("Integer", "V", {{"Value", "1"}}),
            camera, readOnly);
        row("a boolean with another value for true",
            lockedByC + node("Boolean", "C", {{"pValue", "V"}, {"OnValue", "2"}}) +
                node("Integer", "V", {{"Value", "1"}}));
        row("a lock by formula does not count", lockedByC + node("IntSwissKnife", "C", {{"Formula", "1"}}));
        row("a lock in a register that is not there does not count",
            lockedByC + node("IntReg", "C", {{"Address", "0x90000"}, {"Length", "4"}}));
        row("a lock in a register that must not be read does not count",
            lockedByC + node("IntReg", "C", {{"Address", "0x9000"}, {"Length", "4"}}));
        const QString missing = "NULL pointer dereferenced";
        row("a number", node("Integer", "DeviceUserID", {{"Value", "1"}}), missing, missing);
        row("nothing of that name", node("Integer", "Width"), missing, missing);
    }

    void aTextFeatureIsReadAndWritten()
    {
        QFETCH(const QByteArray, nodes);
        QFETCH(const QString, write);
        FakePort port;
        putFile(port, descriptionOf(nodes));
        port.put(0x1000, "camera");
        port.put(0x2000, QByteArray::fromHex(
                             "00001000 00100000 FF000000 5A10005A 5A00105A5A5A5A5A 00000000 80000000"));
        port.faults[0x9000] = deny;
        const auto map = gige::makeNodeMap(port);
        QCOMPARE(port.reads, 0); // a save of addresses need not wait for the description
        const auto name = [&map] { return GenApi::CPointer<GenApi::IString>(map->GetNode("DeviceUserID")); };
        QTEST(resultOf([&] { return QString(name()->GetValue(true).c_str()); }), "read");
        const QString result = resultOf([&] {
            name()->SetValue("new");
            return QString(port.written);
        });
        QCOMPARE(result, write);
        QCOMPARE(port.written.isEmpty(), !write.startsWith("1000:"));
    }

    void aFeatureThatIsNotUnderstoodIsTheStandardRegister_data()
    {
        QTest::addColumn<QByteArray>("nodes");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* name, const QByteArray& nodes, const char* reason) {
            QTest::newRow(name) << nodes << QString("in the camera's description, node ") + reason;
        };
        row("no address", userId({{"Length", "16"}}), "'DeviceUserID' has no address");
        row("no number", userId({{"Address", "1,2"}, {"Length", "16"}}),
            "'DeviceUserID' has '1,2' for a number");
        row("too long", userId({{"Address", "0"}, {"Length", "65537"}}),
            "'DeviceUserID' has a length of 65537 bytes");
        row("below the registers", userId({{"Address", "-4"}, {"Length", "4"}}),
            "'DeviceUserID' has no place");
        row("above the registers", userId({{"Address", "0xFFFFFFFF"}, {"Length", "2"}}),
            "'DeviceUserID' has no place");
        row("no length", userId({{"Address", "0x1000"}}), "'DeviceUserID' has no place");
        row("a formula", userId({{"Address", "0"}, {"IntSwissKnife", ""}, {"Length", "4"}}),
            "'DeviceUserID' has an address with IntSwissKnife");
        row("an index", userId({{"Address", "0"}, {"pIndex", "A"}, {"Length", "4"}}),
            "'DeviceUserID' has an address with pIndex");
        row("a reference to nothing", userId(atA), "'DeviceUserID' refers to 'A', which does not exist");
        row("a formula elsewhere", userId(atA) + node("IntSwissKnife", "A"),
            "'A' is of the kind 'IntSwissKnife'");
        row("a circle", userId(atA) + node("Integer", "A", {{"pValue", "A"}}),
            "'A' refers to too many nodes or to itself");
        row("bits outside",
            userId(atA) + node("MaskedIntReg", "A", {{"Address", "0x2000"}, {"Length", "4"}, {"Bit", "32"}}),
            "'A' has a bit field outside of its register");
        row("an address in a register that must not be read",
            userId(atA) + node("IntReg", "A", {{"Address", "0x9000"}, {"Length", "4"}}),
            "'A' cannot be read: no such register");
        row("a length in a register that takes longer than there is time",
            userId({{"Address", "0x1000"}, {"pLength", "A"}}) +
                node("IntReg", "A", {{"Address", "0x9004"}, {"Length", "4"}}),
            "'A' takes too long to be read: no answer in time");
        row("not in the camera's registers",
            node("StringReg", "DeviceUserID", place + Children{{"pPort", "P"}}) +
                node("Port", "P", {{"ChunkID", "1"}}),
            "'DeviceUserID' does not lie");
        row("a reference to a number",
            node("String", "DeviceUserID", {{"pValue", "A"}}) + node("Integer", "A", {{"Value", "1"}}),
            "'A' is no text");
    }

    void aFeatureThatIsNotUnderstoodIsTheStandardRegister()
    {
        QFETCH(const QByteArray, nodes);
        QFETCH(const QString, reason);
        for (const bool hasRegister : {true, false}) {
            FakePort port;
            putFile(port, descriptionOf(nodes));
            port.put(gvcp::Register::Capability, hasRegister ? "\x80" : "\x7F");
            port.faults[0x9000] = deny;
            port.faults[0x9004] = outlastTheLimit;
            const auto map = gige::makeNodeMap(port);
            const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
            const QString result = resultOf([&] {
                name->SetValue("new");
                return QString(port.written);
            });
            const QString told = hasRegister ? warnings().join('\n') : result;
            QVERIFY2(told.contains(": " + reason), qPrintable(told));
            QCOMPARE(port.written, hasRegister ? "e8:new............. " : "");
        }
    }

    void anArchiveOfManyFilesIsNotOpened()
    {
        FakePort port;
        putFile(port, QByteArray("PK\1\2").repeated(17), "a.zip");
        QVERIFY(gige::makeNodeMap(port)->GetNode("DeviceUserID") == nullptr);
        QVERIFY(
            warnings().join('\n').contains("the zip archive cannot be used: it holds more than 16 files"));
    }

    void whatTakesTooMuchIsGivenUp_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("reason");
        const QString tooMany = "the XML has more elements than can be held";
        QTest::newRow("a million nested elements") << QByteArray("<a>").repeated(1'000'000) << tooMany;
        QTest::newRow("a million attributes")
            << "<a" + QByteArray(" b='c'").repeated(1'000'000) + "/>" << tooMany;
        QTest::newRow("a million texts") << QByteArray("<a b='>'/>t").repeated(700'000) << tooMany;
        QTest::newRow("an excerpt of what is wrong, however long")
            << descriptionOf(userId({{"Address", "1"}, {"pLength", QByteArray(9000, 'x').constData()}}))
            << "which does not exist";
    }

    void whatTakesTooMuchIsGivenUp()
    {
        QFETCH(const QByteArray, xml);
        QFETCH(const QString, reason);
        FakePort port;
        putFile(port, xml);
        port.put(gvcp::Register::Capability, "\x80");
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        QCOMPARE(name->GetMaxLength(), 16);
        const QString told = warnings().join('\n');
        QVERIFY2(told.contains(reason) && told.size() < 400, qPrintable(told.left(1000)));
    }

    void aCameraThatFallsSilentIsNotTakenForOneWithoutDescription()
    {
        FakePort port;
        port.faults[gvcp::Register::FirstUrl] = keepSilent;
        port.faults[gvcp::Register::Capability] = keepSilent;
        QVERIFY_THROWS_EXCEPTION(GenICam::TimeoutException,
                                 static_cast<void>(gige::makeNodeMap(port)->GetNode("DeviceUserID")));
        port.faults.erase(gvcp::Register::Capability); // then only its description cannot be had
        port.put(gvcp::Register::Capability, "\x80");
        QVERIFY(gige::makeNodeMap(port)->GetNode("DeviceUserID") != nullptr);
    }

    void aNameIsReadBack_data()
    {
        QTest::addColumn<bool>("isKept");
        QTest::addColumn<QString>("result");
        QTest::newRow("kept") << true << "";
        QTest::newRow("acknowledged and forgotten")
            << false << "The camera acknowledged the text 'new' at 0x1000 and has 'camera' there";
    }

    void aNameIsReadBack()
    {
        QFETCH(const bool, isKept);
        FakePort port;
        putFile(port, descriptionOf(userId(place)));
        port.put(0x1000, "camera");
        port.keepsTexts = isKept;
        const auto map = gige::makeNodeMap(port);
        const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
        QTEST(resultOf([&] {
                  name->SetValue("new");
                  return QString();
              }),
              "result");
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
        QVERIFY_THROWS_EXCEPTION(GenICam::InvalidArgumentException,
                                 name->SetValue("seventeen bytes..", false));
        name->SetValue(" Kölner Dom 12 ");
        QCOMPARE(port.written, "e8: Kölner Dom 12  ");
    }
};

QTEST_GUILESS_MAIN(TestNodeMap)
#include "tst_nodemap.moc"
