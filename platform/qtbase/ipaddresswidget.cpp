#include "qtbase/ipaddresswidget.h"

#include "qtbase/advicesign.h"
#include "qtbase/formatting.h"
#include "qtbase/validators.h"
#include "ui_ipaddresswidget.h"

#include "net/addresses.h"

#include <QKeyEvent>
#include <QNetworkInterface>
#include <QPushButton>
#include <QStyle>
#include <QValidator>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

constexpr QLatin1String makerPrefix("02-5E-41-");
constexpr qsizetype macLength = 17; // characters, with separators
constexpr int linesOfAdvice = 3;

/// Accepts only text that the field can hold, and drops blanks, which come with pasted text. The length is
/// checked after that: the field's own limit would cut pasted text before, to another address.
class CharacterFilter : public QValidator
{
public:
    CharacterFilter(const char* characters, qsizetype maxLength, QObject* parent)
        : QValidator(parent), m_characters(QLatin1String(characters)), m_maxLength(maxLength)
    {}

    State validate(QString& input, int& pos) const override
    {
        const auto isSpace = [](QChar character) { return character.isSpace(); };
        pos -= static_cast<int>(std::ranges::count_if(QStringView(input).left(pos), isSpace));
        input.removeIf(isSpace);
        const bool fits =
            std::ranges::all_of(input, [&](QChar character) { return m_characters.contains(character); });
        return fits && input.size() <= m_maxLength ? Acceptable : Invalid;
    }

private:
    QString m_characters;
    qsizetype m_maxLength;
};

void setText(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
    edit->end(false);
}

constexpr int longestSubnet = 31; // bits; a host's own /32 leaves no room for a camera

/// The mask of the smallest subnet of an active host adapter that contains the address; null if there is
/// none.
QHostAddress hostMaskFor(const QHostAddress& address)
{
    int longest = 0;
    QHostAddress mask;
    const auto adapters = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& adapter : adapters) {
        if (!adapter.flags().testFlag(QNetworkInterface::IsUp)) {
            continue;
        }
        const auto entries = adapter.addressEntries();
        for (const QNetworkAddressEntry& entry : entries) {
            const int length = entry.prefixLength();
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && length > longest &&
                length <= longestSubnet && address.isInSubnet(entry.ip(), length)) {
                longest = length;
                mask = entry.netmask();
            }
        }
    }
    return mask;
}

} // namespace

IpAddressWidget::IpAddressWidget(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui_IpAddressWidget>())
{
    ui->setupUi(this);
    for (QLineEdit* edit : {ui->editIpAddress, ui->editDefaultGateway}) {
        edit->setValidator(new QIpAddressWithNetmaskValidator(ui->editSubnetMask, edit));
        connect(edit, &QLineEdit::textEdited, this, [this, edit] { takeMaskLength(edit); });
    }
    ui->editSubnetMask->setValidator(new QIpNetmaskValidator(ui->editSubnetMask));
    ui->editMacAddress->setValidator(
        new CharacterFilter("0123456789abcdefABCDEF:-", macLength, ui->editMacAddress));
    createAdviceSigns();
    setMacAddress(QString());
    setReason(QString(), QString());
    setShowMacAddress(false);
    connect(ui->editIpAddress, &QLineEdit::textEdited, this, &IpAddressWidget::followAddress);
    connect(ui->editSubnetMask, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_maskTyped = !text.isEmpty(); });
}

void IpAddressWidget::createAdviceSigns()
{
    using enum advice::Field;
    for (const auto& [field, edit, row] : {std::tuple{MacAddress, ui->editMacAddress, ui->rowMacAddress},
                                           {Address, ui->editIpAddress, ui->rowIpAddress},
                                           {Mask, ui->editSubnetMask, ui->rowSubnetMask},
                                           {Gateway, ui->editDefaultGateway, ui->rowDefaultGateway}}) {
        auto* const sign = new AdviceSign(edit, this);
        row->addWidget(sign);
        m_signs[field] = sign;
        connect(edit, &QLineEdit::textChanged, this, &IpAddressWidget::showAdvice);
    }
    connect(ui->editMacAddress, &QLineEdit::textChanged, this, &IpAddressWidget::showCamera);
    // So that nothing moves while the user types.
    ui->labelAdvice->setMinimumHeight(linesOfAdvice * ui->labelAdvice->fontMetrics().lineSpacing());
}

IpAddressWidget::~IpAddressWidget() = default;

void IpAddressWidget::setHeaderText(const QString& text)
{
    ui->labelHeader->setText(text);
}

void IpAddressWidget::setReason(const QString& sentence, const QString& technicalText)
{
    const QIcon sign = style()->standardIcon(QStyle::SP_MessageBoxInformation);
    ui->labelReasonSign->setPixmap(sign.pixmap(style()->pixelMetric(QStyle::PM_SmallIconSize)));
    ui->labelReasonSign->setVisible(!sentence.isEmpty());

    ui->labelReason->setText(sentence);
    ui->labelReason->setAccessibleDescription(technicalText);
    ui->labelReason->setToolTip(toolTipText(technicalText));
    ui->labelReason->setVisible(!sentence.isEmpty());
}

void IpAddressWidget::setShowMacAddress(bool show)
{
    ui->formLayout->setRowVisible(ui->rowMacAddress, show);
    showCamera();
    showAdvice();
}

void IpAddressWidget::setSurroundings(advice::Surroundings surroundings)
{
    m_surroundings = std::move(surroundings);
    showCamera();
    showAdvice();
}

void IpAddressWidget::setIpAddress(const QString& text)
{
    setText(ui->editIpAddress, text);
}

void IpAddressWidget::setSubnetMask(const QString& text)
{
    setText(ui->editSubnetMask, text);
}

void IpAddressWidget::setDefaultGateway(const QString& text)
{
    setText(ui->editDefaultGateway, text);
}

void IpAddressWidget::setMacAddress(const QString& text)
{
    const std::string mac = text.toStdString();
    setText(ui->editMacAddress, net::parseMac(mac) ? formatMACAddress(mac.c_str(), "-") : makerPrefix);
}

QString IpAddressWidget::ipAddress() const
{
    return ui->editIpAddress->text();
}

QString IpAddressWidget::subnetMask() const
{
    return ui->editSubnetMask->text();
}

QString IpAddressWidget::defaultGateway() const
{
    return ui->editDefaultGateway->text();
}

QString IpAddressWidget::macAddress() const
{
    return ui->editMacAddress->text();
}

advice::Entry IpAddressWidget::entry() const
{
    return {.purpose = advice::Purpose::Temporary,
            .mac = macAddress(),
            .address = ipAddress(),
            .mask = subnetMask(),
            .gateway = defaultGateway()};
}

void IpAddressWidget::setEntry(const advice::Entry& entry)
{
    setMacAddress(entry.mac);
    setIpAddress(entry.address);
    setSubnetMask(entry.mask);
    setDefaultGateway(entry.gateway);
}

QHostAddress IpAddressWidget::subnetFromAddress(const QHostAddress& address)
{
    bool isIpv4 = false;
    const quint32 value = address.toIPv4Address(&isIpv4);
    const quint32 firstPart = value >> 24;
    if (!isIpv4 || firstPart == 0 || firstPart >= 224) {
        return {};
    }
    const QHostAddress hostMask = hostMaskFor(address);
    if (!hostMask.isNull()) {
        return hostMask;
    }
    if (firstPart < 128) {
        return QHostAddress(0xFF000000);
    }
    return QHostAddress(firstPart < 192 ? 0xFFFF0000 : 0xFFFFFF00);
}

void IpAddressWidget::setVisible(bool visible)
{
    QDialog::setVisible(visible);
    if (visible) {
        // QDialog selects the whole field that it focuses; the first key would then replace the suggestion.
        QLineEdit* const first = ui->editMacAddress->isHidden() ? ui->editIpAddress : ui->editMacAddress;
        first->setFocus(Qt::OtherFocusReason);
        first->end(false);
    }
}

void IpAddressWidget::followAddress(const QString& text)
{
    const QHostAddress mask = subnetFromAddress(addressFromText(text));
    if (!m_maskTyped && !mask.isNull()) {
        setText(ui->editSubnetMask, mask.toString());
    }
}

void IpAddressWidget::takeMaskLength(QLineEdit* edit)
{
    if (const auto parts = splitMaskLength(edit->text())) {
        setText(edit, parts->address);
        setText(ui->editSubnetMask, parts->mask);
        m_maskTyped = true;
    }
}

void IpAddressWidget::showCamera()
{
    const bool isAsked = !ui->editMacAddress->isHidden();
    const auto camera = cameraOf(macAddress(), m_surroundings);
    const QString text = camera                                      ? describe(*camera)
                         : net::parseMac(macAddress().toStdString()) ? tr("not in the list")
                                                                     : QString();
    ui->labelCamera->setText(text);
    ui->formLayout->setRowVisible(ui->labelCamera, isAsked || camera);
    setAccessibleDescription(text);
}

void IpAddressWidget::showAdvice()
{
    std::vector<advice::Advice> all = adviceOn(entry(), m_surroundings);
    if (ui->editMacAddress->isHidden()) {
        std::erase_if(all, [](const auto& one) { return one.field == advice::Field::MacAddress; });
    }
    for (const auto& [field, sign] : m_signs) {
        sign->setAdvice(adviceFor(field, all));
    }
    const auto missing = std::ranges::find_if(all, advice::isUnfinished);
    QPushButton& ok = *ui->buttonBox->button(QDialogButtonBox::Ok);
    ok.setEnabled(missing == all.end());
    setExplanation(ok, missing != all.end() ? sentence(*missing) : QString());
    ui->labelAdvice->setText(all.empty() ? QString() : sentence(all.front()));
}

void IpAddressWidget::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isEnter || !event->isAutoRepeat()) {
        QDialog::keyPressEvent(event);
    }
}
