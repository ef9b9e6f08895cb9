#include "gvcp/gvcp.h"
#include "nodemap.h"
#include "support/columns.h"
#include "support/fakeport.h"
#include "support/trace.h"

#include <QFile>
#include <QTest>

#include <functional>
#include <optional>
#include <utility>

namespace {

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

QByteArray integer(const QByteArray& name, const char* value)
{
    return node("Integer", name, {{"Value", value}});
}

QByteArray intReg(const QByteArray& name, const char* address, const char* length, const Children& more = {},
                  const QByteArray& kind = "IntReg")
{
    return node(kind, name, Children{{"Address", address}, {"Length", length}} + more);
}

QByteArray maskedReg(const char* address, const char* length, const Children& bits)
{
    return intReg("A", address, length, bits, "MaskedIntReg");
}

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

const QString readOnly = "The feature 'DeviceUserID' cannot be written at present.";
const QString hidden = "The feature 'DeviceUserID' cannot be read at present.";
const QString written = "new.....";

/// The archive of that name among those from which fuzzing starts.
QByteArray seed(const QString& name)
{
    QFile file(QFINDTESTDATA("fuzz/seeds/fuzz_zip/" + name + ".zip"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The features of a camera, out of the description that it carries or without one.
class TestNodeMap : public QObject
{
    Q_OBJECT

    std::optional<TraceCapture> m_trace;

    std::optional<FakePort> m_port;
    std::unique_ptr<GenApi::INodeMap> m_map;

    QString warnings() { return m_trace->texts("Lanvic.Camera.NodeMap").join('\n'); }
    auto name() { return GenApi::CPointer<GenApi::IString>(m_map->GetNode("DeviceUserID")); }
    /// Writes the name "new". What is then where the name was, or why it failed.
    QString writeName()
    {
        return resultOf([this] {
            name()->SetValue("new");
            return m_port->bytesAt(0x1000);
        });
    }
    /// Looks whether the camera's description is used, which has a name of 15 bytes, or else the standard
    /// name register, and why.
    void checkUse(const QString& whyNot)
    {
        m_port->put(gvcp::Register::Capability, "\x80");
        QCOMPARE(name()->GetMaxLength(), whyNot.isEmpty() ? 15 : 16);
        const QString told = warnings();
        QVERIFY2(whyNot.isEmpty() ? told.isEmpty() : told.contains(whyNot) && told.size() < 400,
                 qPrintable(told.left(1000)));
    }

private slots:
    void init()
    {
        m_trace.emplace();
        m_map = gige::makeNodeMap(m_port.emplace());
    }
    void cleanup() { m_trace.reset(); }

    void theDescriptionComesFromTheFirstUsableUrl_data()
    {
        // # stands for the length, and whyNot for how the trace explains it if neither is used.
        const auto row = addColumns<QByteArray, QByteArray, QString>("first", "second", "whyNot");
        const QByteArray good = "Local:a.xml;10000;#";
        row("as the standard says", good, "", "");
        row("in any letter case, with slashes, prefixes and a version",
            "LOCAL:///a.XML;0x10000;0X#?SchemaVersion=1.1.0", "", "");
        row("with blanks", " local: my a.xml ; 00010000 ; # \r\n", "", "");
        row("the second", "http://a/b.xml", good, "");
        row("the second, as the first is no register description", "Local:a.xml;B000;b", good, "");
        row("none", "", "", "the URL is empty; second URL: the URL is empty");
        row("on a disk", "File:C:\\a.xml", "", "'File:C:\\a.xml' is not in the camera");
        row("no number", "Local:a.xml;10g;10", "", "'10g' is no hexadecimal number");
        row("beyond the registers", "Local:a.xml;FFFFFFFF;2", "", "'Local:a.xml;FFFFFFFF;2' names no place");
        row("too large", "Local:a.xml;A000;800001", "", "'a.xml' is larger than 8388608 bytes");
        row("no XML", "Local:a.xml;C000;4", "", "the XML is malformed at byte");
        row("not to be read", "Local:a.xml;40000;4", "", "no such register");
    }

    void theDescriptionComesFromTheFirstUsableUrl()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        QFETCH(const QString, whyNot);
        const QByteArray xml =
            descriptionOf(userId({{"Address", "0"}, {"Length", "15"}})) + QByteArray(3, '\0');
        const QByteArray length = QByteArray::number(xml.size(), 16);
        m_port->put(gvcp::Register::FirstUrl, first.replace("#", length));
        m_port->put(gvcp::Register::SecondUrl, second.replace("#", length));
        m_port->put(fileAddress, xml);
        m_port->put(0xB000, "<svg></svg>");
        m_port->put(0xC000, "<a<b");
        checkUse(whyNot.isEmpty() ? "" : "The camera's description cannot be used (first URL: " + whyNot);
    }

    void aFileIsUsedUnlessItIsTooLarge_data()
    {
        const auto row = addColumns<QByteArray, QByteArray, QString>("file", "name", "whyNot");
        const QString noUse = "the zip archive cannot be used: ";
        row("stored in an archive", seed("stored"), "A.Zip", "");
        row("deflated", seed("deflated"), "A.Zip", "");
        row("two files of which one is XML", seed("two"), "A.Zip", "");
        row("one file of another name", seed("other-name"), "A.Zip", "");
        row("a file that claims to have 4 bytes", seed("claims-4-bytes"), "A.Zip", "");
        row("two files of which none is XML", seed("no-xml"), "A.Zip",
            noUse + "it holds 2 files and none is XML");
        row("compressed in another way", seed("lzma"), "A.Zip",
            noUse + "its file is neither stored nor deflated");
        row("a wrong checksum", seed("wrong-checksum"), "A.Zip", noUse + "CRC");
        row("cut off", seed("cut"), "A.Zip", noUse + "Not a zip");
        row("small inside and too large outside", seed("bomb"), "A.Zip",
            noUse + "its file has more than 8388608 bytes");
        row("many files", QByteArray("PK\1\2").repeated(17), "a.zip", noUse + "it holds more than 16 files");
        const char* const tooMany = "the XML has more elements than can be held";
        row("a million nested elements", QByteArray("<a>").repeated(1'000'000), "a.xml", tooMany);
        row("a million attributes", "<a" + QByteArray(" b='c'").repeated(1'000'000) + "/>", "a.xml", tooMany);
        row("a million texts", QByteArray("<a b='>'/>t").repeated(700'000), "a.xml", tooMany);
        row("an excerpt of what is wrong, however long",
            descriptionOf(userId({{"Address", "1"}, {"pLength", QByteArray(9000, 'x').constData()}})),
            "a.xml", "which does not exist");
    }

    void aFileIsUsedUnlessItIsTooLarge()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QByteArray, name);
        QFETCH(const QString, whyNot);
        m_port->putFile(file, name);
        checkUse(whyNot);
    }

    void aTextFeatureIsReadAndWritten_data()
    {
        // What is read, and what is then where the text was; or what is said.
        const auto row = addColumns<QByteArray, QString, QString>("nodes", "read", "write");
        row("a register", userId(place), "camera", written);
        row("in groups, with prefixes and blanks, the first of two",
            "<g:Group><g:Group><g:StringReg Name='DeviceUserID'><g:Address>4096</g:Address><g:Length> "
            "16\n</g:Length></g:StringReg></g:Group></g:Group><StringReg Name='DeviceUserID'/>",
            "camera", written);
        row("address and length from other nodes",
            userId({{"Address", "20"}, {"pAddress", "A"}, {"Address", "-4"}, {"pLength", "L"}}) +
                node("Integer", "A", {{"pValue", "B"}}) + integer("B", "0xFF0") + integer("L", "16"),
            "camera", written);
        row("address in a little-endian register", userId(atA) + intReg("A", "0x2004", "2"), "camera",
            written);
        row("address as the sum of an unsigned and a signed byte",
            userId({{"Address", "0xF02"}, {"pAddress", "U"}, {"pAddress", "S"}, {"Length", "16"}}) +
                intReg("U", "0x2008", "1") + intReg("S", "0x2008", "1", {{"Sign", "Signed"}}),
            "camera", written);
        const std::pair<const char*, const char*> bigEndian{"Endianess", "BigEndian"};
        row("address in bits of a big-endian register",
            userId(atA) + maskedReg("0x200C", "4", {{"LSB", "23"}, {"MSB", "8"}, bigEndian}), "camera",
            written);
        row("address in bits of a little-endian register",
            userId(atA) + maskedReg("0x2010", "8", {{"LSB", "8"}, {"MSB", "23"}}), "camera", written);
        row("locked behind a reference",
            node("String", "DeviceUserID", {{"pValue", "R"}}) +
                node("StringReg", "R", place + Children{{"pIsLocked", "T"}}) +
                node("Boolean", "T", {{"Value", "true"}}),
            "camera", readOnly);
        row("a fixed text", "<String Name='DeviceUserID'><Value>a &lt;&#98;&gt;&e;</Value></String>",
            "a <b>&e;", readOnly);
        row("less than a word", userId({{"Address", "0x1000"}, {"Length", "3"}}), "cam", "newera..");
        row("within a word", userId({{"Address", "0x1001"}, {"Length", "3"}}), "ame", "cnewra..");
        row("across two words", userId({{"Address", "0x1002"}, {"Length", "4"}}), "mera", "canew...");
        row("read only by imposed access",
            userId(place + Children{{"AccessMode", "RW"}, {"ImposedAccessMode", "RO"}}), "camera", readOnly);
        row("write only", userId(place + Children{{"AccessMode", "WO"}}), hidden, written);
        row("not available", userId(place + Children{{"pIsAvailable", "A"}}) + intReg("A", "0x2018", "4"),
            hidden, readOnly);
        row("not implemented", userId(place + Children{{"pIsImplemented", "A"}}) + integer("A", "0"), hidden,
            readOnly);
        const QByteArray locked = userId(place + Children{{"pIsLocked", "A"}});
        row("locked by a bit", locked + maskedReg("0x201C", "4", {{"Bit", "0"}, bigEndian}), "camera",
            readOnly);
        row("locked by a boolean with another value for true",
            locked + node("Boolean", "A", {{"pValue", "V"}, {"OnValue", "2"}}) + integer("V", "2"), "camera",
            readOnly);
        row("a lock in a register that is not there does not count", locked + intReg("A", "0x90000", "4"),
            "camera", written);
        const QString missing = "NULL pointer dereferenced";
        row("a number", integer("DeviceUserID", "1"), missing, missing);
        row("a fixed text", node("String", "DeviceUserID", {{"Value", "fixed"}}), "fixed", readOnly);
        row("nothing of that name", node("Integer", "Width"), missing, missing);
    }

    void aTextFeatureIsReadAndWritten()
    {
        QFETCH(const QByteArray, nodes);
        QFETCH(const QString, write);
        m_port->putFile(descriptionOf(nodes));
        m_port->put(0x1000, "camera");
        m_port->put(0x2000, QByteArray::fromHex(
                                "00001000 00100000 FF000000 5A10005A 5A00105A5A5A5A5A 00000000 80000000"));
        m_port->faults[0x9000] = deny;
        QCOMPARE(m_port->reads, 0); // a save of addresses need not wait for the description
        QTEST(resultOf([this] { return QString(name()->GetValue(true).c_str()); }), "read");
        QTEST(writeName(), "write");
        QCOMPARE(m_port->bytesAt(0x1000) == "camera..", !write.contains("new"));
    }

    void aFeatureThatIsNotUnderstoodIsRefused_data()
    {
        const auto row = addColumns<QByteArray, QString>("nodes", "reason");
        const auto place = [](const char* address, const char* length) {
            return userId({{"Address", address}, {"Length", length}});
        };
        row("no address", userId({{"Length", "16"}}), "'DeviceUserID' has no address");
        row("no number", place("1,2", "16"), "'DeviceUserID' has '1,2' for a number");
        row("too long", place("0", "65537"), "'DeviceUserID' has a length of 65537 bytes");
        const char* const noPlace = "'DeviceUserID' has no place in the camera's registers";
        row("below the registers", place("-4", "4"), noPlace);
        row("above the registers", place("0xFFFFFFFF", "2"), noPlace);
        row("a formula", userId({{"Address", "0"}, {"IntSwissKnife", ""}, {"Length", "4"}}),
            "'DeviceUserID' has an address with IntSwissKnife, which is not evaluated");
        row("a reference to nothing", userId(atA), "'DeviceUserID' refers to 'A', which does not exist");
        row("a formula elsewhere", userId(atA) + node("IntSwissKnife", "A"),
            "'A' is of the kind 'IntSwissKnife', which is not evaluated");
        row("a circle", userId(atA) + node("Integer", "A", {{"pValue", "A"}}),
            "'A' refers to too many nodes or to itself");
        row("bits outside", userId(atA) + maskedReg("0x2000", "4", {{"Bit", "32"}}),
            "'A' has a bit field outside of its register");
        row("an address in a register that must not be read", userId(atA) + intReg("A", "0x9000", "4"),
            "'A' cannot be read: no such register");
        row("a length in a register that outlasts the time there is",
            userId({{"Address", "0x1000"}, {"pLength", "A"}}) + intReg("A", "0x9004", "4"),
            "'A' takes too long to be read: no answer in time");
        row("not in the camera's registers",
            node("StringReg", "DeviceUserID", Children{{"pPort", "P"}, {"Address", "0"}, {"Length", "4"}}) +
                node("Port", "P", {{"ChunkID", "1"}}),
            "'DeviceUserID' does not lie in the camera's registers");
        row("a reference to a number", node("String", "DeviceUserID", {{"pValue", "A"}}) + integer("A", "1"),
            "'A' is no text");
    }

    void aFeatureThatIsNotUnderstoodIsRefused()
    {
        QFETCH(const QByteArray, nodes);
        QFETCH(const QString, reason);
        m_port->putFile(descriptionOf(nodes));
        m_port->faults[0x9000] = deny;
        m_port->faults[0x9004] = outlastTheLimit;
        QCOMPARE(writeName(),
                 "The feature 'DeviceUserID' cannot be used: in the camera's description, node " + reason +
                     '.');
    }

    void aCameraThatFallsSilentIsNotTakenForOneWithoutDescription()
    {
        m_port->faults[gvcp::Register::FirstUrl] = keepSilent;
        m_port->faults[gvcp::Register::Capability] = keepSilent;
        QVERIFY_THROWS_EXCEPTION(GenICam::TimeoutException, static_cast<void>(name()));
        m_port->faults.erase(gvcp::Register::Capability); // then only the description cannot be had
        m_port->put(gvcp::Register::Capability, "\x80");
        QCOMPARE(name()->GetMaxLength(), 16);
        QVERIFY(warnings().contains("first URL: no answer; second URL: the URL is empty"));
    }

    void theStandardNameRegister()
    {
        m_port->put(gvcp::Register::Capability, "\x7F\xFF\xFF\xFF");
        QVERIFY(m_map->GetNode("DeviceUserID") == nullptr);
        QVERIFY(warnings().endsWith("). The camera has no standard name register either."));
        m_port->put(gvcp::Register::Capability, "\x80");
        m_port->put(gvcp::Register::UserDefinedName, "sixteen bytes...");
        m_map = gige::makeNodeMap(*m_port);
        QCOMPARE(m_map->GetNode("DeviceUserID")->GetName().c_str(), "DeviceUserID");
        QVERIFY(m_map->GetNode("Width") == nullptr);
        QCOMPARE(name()->GetValue().c_str(), "sixteen bytes...");
        QVERIFY_THROWS_EXCEPTION(GenICam::InvalidArgumentException,
                                 name()->SetValue("seventeen bytes..", false));
        name()->SetValue(" Kölner Dom 12 ");
        QCOMPARE(m_port->bytesAt(gvcp::Register::UserDefinedName, 16), " Kölner Dom 12 ");
        m_port->putFile(descriptionOf(integer("Width", "1")));
        m_map = gige::makeNodeMap(*m_port);
        QCOMPARE(name()->GetMaxLength(), 16);
        QVERIFY(
            warnings().endsWith("is the standard name register: the camera's description has no such text."));
    }
};

QTEST_GUILESS_MAIN(TestNodeMap)
#include "tst_nodemap.moc"
