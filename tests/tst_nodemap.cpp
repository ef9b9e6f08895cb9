#include "gige/description.h"
#include "gige/descriptionerror.h"
#include "gige/gvcp.h"
#include "gige/nodemap.h"
#include "gige/registerport.h"
#include "gige/zipdescription.h"
#include "trace.h"

#include <QFile>
#include <QTest>

#include <array>
#include <functional>
#include <map>
#include <vector>

namespace {

template <typename E>
void raise()
{
    throw E("no such register", "", 0);
}

/// Registers as bytes by address; what is not there is refused. Keeps what was written.
class FakePort : public gige::RegisterPort
{
public:
    void put(std::uint32_t address, const QByteArray& bytes)
    {
        for (const char byte : bytes) {
            memory[address++] = static_cast<std::uint8_t>(byte);
        }
    }
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        ++reads;
        if (const auto fault = faults.find(address); fault != faults.end()) {
            fault->second();
        }
        for (std::uint8_t& byte : to) {
            const auto at = memory.find(address++);
            if (at == memory.end()) {
                raise<gige::RefusalException>();
            }
            byte = at->second;
        }
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        const QByteArray bytes(reinterpret_cast<const char*>(from.data()),
                               static_cast<qsizetype>(from.size()));
        written += QByteArray::number(address, 16) + ':' + QByteArray(bytes).replace('\0', '.') + ' ';
        put(address, bytes);
    }

    std::map<std::uint32_t, std::uint8_t> memory;
    std::map<std::uint32_t, void (*)()> faults; // called when that address is read
    int reads = 0;
    QByteArray written; // address and bytes, NUL shown as a dot
};

QByteArray describe(const QByteArray& nodes)
{
    return R"(<?xml version="1.0"?><!DOCTYPE x [<!ENTITY e "x">]><RegisterDescription SchemaMajorVersion="1"
        xmlns="http://www.genicam.org/GenApi/Version_1_1"><Group><Group/><Port Name="Device"/></Group>)" +
           nodes + "</RegisterDescription>";
}

/// An archive that the fuzzer starts from, too: of one description, stored or deflated, or of two files.
QByteArray archive(const QString& name)
{
    QFile file(QFINDTESTDATA("fuzz/seeds/fuzz_zip/" + name + ".zip"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Nodes in XML from a short form: "KIND NAME CHILD=TEXT ... | ...", where
/// @ is the start of DeviceUserID and $ also its place.
QByteArray nodes(QByteArray brief)
{
    QByteArray xml;
    for (const QByteArray& node : brief.replace("$", "@ Address=0x1000 Length=16")
                                      .replace("BE", "Endianess=BigEndian")
                                      .replace("@", "StringReg DeviceUserID pPort=Device")
                                      .split('|')) {
        const QByteArrayList words = node.simplified().split(' ');
        xml += "<" + words[0] + " Name=\"" + words[1] + "\">";
        for (const QByteArray& child : words.sliced(2)) {
            const QByteArray name = child.left(child.indexOf('='));
            xml += "<" + name + ">" + child.mid(name.size() + 1) + "</" + name + ">";
        }
        xml += "</" + words[0] + ">";
    }
    return xml;
}

/// What the call gives, or what it throws.
QString resultOf(const std::function<std::string()>& call)
try {
    return QString::fromStdString(call());
} catch (const GenICam::AccessException& error) {
    return QString("access: ") + error.GetDescription();
} catch (const GenICam::InvalidArgumentException& error) {
    return QString("argument: ") + error.GetDescription();
} catch (const GenICam::GenericException& error) {
    return QString("failure: ") + error.GetDescription();
} catch (const gige::DescriptionError& error) {
    return QString("useless: ") + error.what();
}

/// Equal, or, where a failure is expected, beginning so.
bool fits(const QString& result, const QString& expected)
{
    return expected.contains(": ") ? result.startsWith(expected) : result == expected;
}

/// Of DeviceUserID: the nodes, what is read and what is written by "new", both with verification.
struct TextFeature
{
    QByteArray nodes;
    QString read = "camera";
    QString written = "1000:new............. ";
};

std::vector<TextFeature> resolvedFeatures()
{
    const QString readOnly = "access: The feature 'DeviceUserID' cannot be written";
    const QString hidden = "access: The feature 'DeviceUserID' cannot be read";
    const QString missing = "failure: NULL pointer dereferenced";
    const QByteArray byA = "@ pAddress=A Length=16 | ";
    return {
        {"$"},
        {"<g:Group><g:Group><g:StringReg Name='DeviceUserID'><g:Address>4096</g:Address><g:Length> "
         "16\n</g:Length></g:StringReg></g:Group></g:Group><StringReg Name='DeviceUserID'/>"},
        {"@ Address=20 pAddress=A Address=-4 pLength=L | Integer A pValue=B | Integer B Value=0xFF0 | "
         "Integer L Value=16"},
        {byA + "IntReg A Address=0x2000 Length=4 BE"},
        {byA + "IntReg A Address=0x2004 Length=2"},
        {"@ Address=0x1001 pAddress=A Length=16 | IntReg A Address=0x2008 Length=1 Sign=Signed"},
        {byA + "MaskedIntReg A Address=0x200C Length=4 LSB=23 MSB=8 BE"},
        {byA + "MaskedIntReg A Address=0x2010 Length=8 LSB=8 MSB=23"},
        {"String DeviceUserID pValue=R | StringReg R Address=0x1000 Length=16"},
        {"String DeviceUserID pValue=R | StringReg R Address=0x1000 Length=16 pIsLocked=T | Boolean T "
         "Value=true",
         "camera", readOnly},
        {"<String Name='DeviceUserID'><Value>a &lt;&#98;&gt;&e;</Value></String>", "a <b>&e;", readOnly},
        {"@ Address=0x1002 Length=4", "mera", "1000:canew... "},
        {"@ Address=0x1001 Length=3", "ame", "1000:cnew "},
        {"$ AccessMode=RW ImposedAccessMode=RO", "camera", readOnly},
        {"$ AccessMode=WO", hidden},
        {"$ pIsAvailable=C | IntReg C Address=0x2018 Length=4", hidden, readOnly},
        {"$ pIsImplemented=C | Integer C Value=0", hidden, readOnly},
        {"$ pIsLocked=C | MaskedIntReg C Address=0x201C Length=4 Bit=0 BE", "camera", readOnly},
        {"$ pIsLocked=C | Boolean C pValue=V OnValue=2 | Integer V Value=1"},
        {"$ pIsLocked=C | IntSwissKnife C Formula=1"}, // of no use, like the next two
        {"$ pIsLocked=C | IntReg C Address=0x9000 Length=4"},
        {"$ pIsLocked=C | Integer C pValue=C"},
        {"Integer DeviceUserID Value=1", missing, missing},
    };
}

std::vector<TextFeature> brokenFeatures()
{
    const auto broken = [](const QByteArray& brief, const QString& why) {
        const QString result =
            "failure: The feature 'DeviceUserID' cannot be used: in the camera's description, node '" + why;
        return TextFeature{brief, result, result};
    };
    const QByteArray byA = "@ pAddress=A Length=4 ";
    return {
        broken("@ Length=16", "DeviceUserID' has no address"),
        broken("@ Address=1,2 Length=16", "DeviceUserID' has '1,2' for"),
        broken("@ Address=0 Length=65537", "DeviceUserID' has a length of 65537"),
        broken("@ Address=-4 Length=4", "DeviceUserID' has no place"),
        broken("@ Address=0 IntSwissKnife= Length=4", "DeviceUserID' has an address with IntSwissKnife"),
        broken(byA, "DeviceUserID' refers to 'A', which does not exist"),
        broken(byA + "| Integer A pValue=A", "A' refers to too many"),
        broken(byA + "| IntReg A Address=0x2000 Length=3", "A' has a length of 3"),
        broken(byA + "| MaskedIntReg A Address=0x2000 Length=4 Bit=32", "A' has a bit field"),
        broken("StringReg DeviceUserID Address=0 Length=4 pPort=P | Port P ChunkID=1",
               "DeviceUserID' does not lie"),
        broken("String DeviceUserID pValue=DeviceUserID", "DeviceUserID' refers to too many"),
    };
}

void checkTextFeature(const TextFeature& row)
{
    FakePort port;
    const QByteArray xml = describe(row.nodes.startsWith('<') ? row.nodes : nodes(row.nodes));
    const QByteArray url = "Local:a.xml;10000;" + QByteArray::number(xml.size(), 16);
    port.put(gvcp::Register::FirstUrl, url.leftJustified(gvcp::Register::UrlSize, '\0'));
    port.put(0x10000, xml);
    port.put(0x1000, QByteArray("camera").leftJustified(16, '\0'));
    port.put(0x2000,
             QByteArray::fromHex("00001000 00100000 FF000000 5A10005A 5A00105A5A5A5A5A 00000000 80000000"));
    const auto map = gige::makeNodeMap(port);
    QCOMPARE(port.reads, 0); // who asks for no feature need not wait for the description
    const auto name = [&map] { return GenApi::CPointer<GenApi::IString>(map->GetNode("DeviceUserID")); };
    QVERIFY(name() || row.read.contains("NULL pointer"));
    port.reads = 0;
    QCOMPARE(bool(name()), !row.read.contains("NULL pointer"));
    QCOMPARE(port.reads, 0);
    const QString read = resultOf([&] { return std::string(name()->GetValue(true).view()); });
    QVERIFY2(fits(read, row.read), qPrintable(row.nodes + " reads " + read));
    const QString written = resultOf([&] {
        name()->SetValue("new");
        return port.written.toStdString();
    });
    QVERIFY2(fits(written, row.written), qPrintable(row.nodes + " writes " + written));
    QCOMPARE(port.written.isEmpty(), !row.written.startsWith("1000"));
}

} // namespace

class TestNodeMap : public QObject
{
    Q_OBJECT

private slots:
    void urlNamesAPlaceInTheCameraOrNothing()
    {
        const auto rows = std::to_array<std::pair<QByteArray, const char*>>({
            {"Local:cam.xml;1000;2F0", "cam.xml 1000 2f0"},
            {"LOCAL:///Cam.ZIP;0x1000;0X2f0?SchemaVersion=1.1.0", "Cam.ZIP 1000 2f0 zipped"},
            {" local: my cam.zip ; 00001000 ; 2F0 \r\n", "my cam.zip 1000 2f0 zipped"},
            {"Local:cam.xml;FFFFFFFF;2", "useless: 'Local:cam.xml;FFFFFFFF;2' names no place"},
            {"Local:cam.xml;1000;0", "useless: 'Local:cam.xml;1000;0' names no place"},
            {"Local:cam.xml;10g;10", "useless: '10g' is no"},
            {"Local:///;1000;10", "useless: 'Local:///;1000;10' names no place"},
            {"File:C:\\cam.xml", "useless: 'File:C:\\cam.xml' is not in the camera"},
            {QByteArray("\0Local:cam.xml;0;1", 18), "useless: the URL is empty"},
        });
        for (const auto& [url, expected] : rows) {
            const QString result = resultOf([text = url.toStdString()] {
                const gige::DescriptionUrl parsed = gige::parseDescriptionUrl(text);
                return parsed.fileName + " " + QByteArray::number(parsed.address, 16).toStdString() + " " +
                       QByteArray::number(parsed.length, 16).toStdString() + (parsed.zipped ? " zipped" : "");
            });
            QVERIFY2(fits(result, expected), qPrintable(url + " gives " + result));
        }
    }

    void zipGivesItsXmlAndBelievesNoSize()
    {
        constexpr qsizetype size = 443;
        const QByteArray good = archive("deflated");
        const QString xml = archive("stored").mid(35, size);
        const QString unusable = "useless: the zip archive cannot be used: ";
        // Writes to both headers of the file: 8 is the method, 14 the checksum, 22 the size that it claims.
        const auto patched = [&good](int field, char low, char high) {
            QByteArray bytes = good;
            for (const qsizetype at : {qsizetype{0}, good.indexOf("PK\1\2") + 2}) {
                bytes[at + field] = low;
                bytes[at + field + 1] = high;
            }
            return bytes;
        };
        struct Row
        {
            QByteArray archive;
            QString expected;
            std::size_t limit = size;
        };
        const auto rows = std::to_array<Row>({
            {good, xml},
            {good + QByteArray(3, '\0'), xml},
            {archive("two"), xml},
            {QByteArray(good).replace("c.xml", "other"), xml},
            {patched(22, 4, 0), xml},
            {good, unusable + "its file has more than 442 bytes", size - 1},
            {patched(14, 0, 0), unusable + "CRC"},
            {patched(8, 14, 0), unusable + "its file is neither stored nor deflated"},
            {good.chopped(30), unusable + "Not a zip"},
            {"", unusable},
        });
        for (const auto& [archive, expected, limit] : rows) {
            const std::vector<std::uint8_t> bytes(archive.begin(), archive.end());
            const QString result =
                resultOf([&, limit = limit] { return gige::unzipDescription(bytes, limit); });
            QVERIFY2(fits(result, expected), archive.toHex() + qPrintable(" gives " + result.left(200)) +
                                                 " and not " + qPrintable(expected));
        }
    }

    void descriptionComesFromTheFirstUsableUrl()
    {
        // At A000 is a plain description, at B000 a zipped one, at C000 other XML, at D000 no XML, at E000
        // nothing.
        const QByteArray plain = describe(nodes("@ Address=0 Length=24")) + QByteArray(3, '\0');
        const QByteArray good = "Local:a.xml;A000;" + QByteArray::number(plain.size(), 16);
        const QByteArray zipped = "Local:b.zip;B000;" + QByteArray::number(archive("deflated").size(), 16);
        struct Row
        {
            QByteArray first;
            QByteArray second;
            QString length; // of DeviceUserID, or what is said instead
            QString trace;
            std::map<std::uint32_t, void (*)()> faults = {};
            QByteArray capability = QByteArray("\x80\0\0\0", 4);
        };
        const QByteArray none;
        const auto rows = std::to_array<Row>({
            {good, none, "24", ""},
            {zipped, good, "15", ""},
            {"http://a/b.xml", good, "24", ""},
            {"Local:c.xml;C000;b", good, "24", ""},
            {"Local:c.xml;D000;4", good, "24", ""},
            {"Local:c.xml;A000;800001", good, "24", ""},
            {"Local:c.xml;E000;10", good, "24", ""},
            {none, none, "16", "first URL: the URL is empty; second URL: the URL is empty"},
            {"Local:c.xml;D000;4", none, "16", "first URL: the XML is malformed at byte"},
            {none, good, "16", "second URL: no such register", {{0x400, raise<gige::RefusalException>}}},
            {none, none, "none", "no standard name register", {}, "\x7F\xFF\xFF\xFF"},
            {good, none, "failure: no such register", "", {{0x200, raise<GenICam::TimeoutException>}}},
        });
        for (const Row& row : rows) {
            FakePort port;
            port.put(gvcp::Register::FirstUrl, row.first.leftJustified(gvcp::Register::UrlSize, '\0'));
            port.put(gvcp::Register::SecondUrl, row.second.leftJustified(gvcp::Register::UrlSize, '\0'));
            port.put(gvcp::Register::Capability, row.capability);
            port.put(0xA000, plain);
            port.put(0xB000, archive("deflated"));
            port.put(0xC000, "<svg></svg>");
            port.put(0xD000, "<a<b");
            port.faults = row.faults;
            const TraceCapture trace;
            const QString length = resultOf([&port] {
                const auto map = gige::makeNodeMap(port);
                const GenApi::CPointer<GenApi::IString> name(map->GetNode("DeviceUserID"));
                return name ? std::to_string(name->GetMaxLength()) : "none";
            });
            QCOMPARE(length, row.length);
            const auto lines = trace.lines("Lanvic.Camera.NodeMap");
            QCOMPARE(lines.size(), row.trace.isEmpty() ? 0 : 1);
            QVERIFY2(lines.isEmpty() || (lines[0].level == QtWarningMsg && lines[0].text.contains(row.trace)),
                     qPrintable(row.trace));
        }
    }

    void textFeatures()
    {
        for (const auto& rows : {resolvedFeatures(), brokenFeatures()}) {
            for (const TextFeature& row : rows) {
                checkTextFeature(row);
            }
        }
    }

    void theStandardNameRegister()
    {
        FakePort port;
        port.put(gvcp::Register::FirstUrl, QByteArray(2 * gvcp::Register::UrlSize, '\0'));
        port.put(gvcp::Register::Capability, QByteArray("\x80\0\0\0", 4));
        port.put(gvcp::Register::UserDefinedName, "sixteen bytes...");
        const TraceCapture trace;
        const auto map = gige::makeNodeMap(port);
        GenApi::INode* const node = map->GetNode("DeviceUserID");
        const GenApi::CPointer<GenApi::IString> name(node);
        QVERIFY(node == map->GetNode("DeviceUserID") && node->GetName() == "DeviceUserID");
        QVERIFY(map->GetNode("Width") == nullptr);
        QCOMPARE(name->GetValue().c_str(), "sixteen bytes...");
        port.reads = 0;
        const auto set = [&](const GenICam::gcstring& text, bool verify) {
            return resultOf([&] {
                name->SetValue(text, verify);
                return port.written.toStdString();
            });
        };
        QVERIFY(set("seventeen bytes..", true)
                    .startsWith("argument: A text of 17 bytes was given; the camera takes up to 16"));
        QVERIFY(set(GenICam::gcstring("a\0b", 3), true).startsWith("argument: "));
        QCOMPARE(set(" Kölner Dom ", true), "e8: Kölner Dom ... ");
        QCOMPARE(port.reads, 0);
    }
};

QTEST_GUILESS_MAIN(TestNodeMap)
#include "tst_nodemap.moc"
