#pragma once

#include <QPointer>
#include <QValidator>

#include <optional>

class QLineEdit;

/// An address that was typed with its prefix length, "192.168.1.9/24".
struct AddressWithMask
{
    QString address; // without the prefix length
    QString mask;    // as four numbers
};

/// Splits such a text once no digit can follow: "/1" may become "/16", and no camera has a mask that short.
[[nodiscard]] std::optional<AddressWithMask> splitMaskLength(const QString& text);

/// Accepts a dotted quad that is a host address under the mask now in the given field: its host part is
/// neither all zeros nor all ones, except under masks of 31 and 32 bits. While that field holds no mask, any
/// dotted quad but 0.0.0.0 is accepted. Other text of digits and dots, or with a prefix length after a slash,
/// is Intermediate, so that no edit on the way to an address is rejected; any other character is Invalid. A
/// comma, which many keypads have instead, becomes a dot, and blanks, which come with pasted text, are
/// removed.
class QIpAddressWithNetmaskValidator : public QValidator
{
    Q_OBJECT

public:
    QIpAddressWithNetmaskValidator(QLineEdit* netmaskEdit, QObject* parent);

    /// Whether an empty text and 0.0.0.0 are accepted too. Off at first.
    void setAllowNullAddress(bool allow) { m_allowNullAddress = allow; }

    State validate(QString& input, int& pos) const override;

private:
    QPointer<QLineEdit> m_netmaskEdit;
    bool m_allowNullAddress = false;
};

/// Accepts a dotted quad that is a contiguous netmask of at least one bit. Other text of digits and dots, or
/// of digits after a slash, is Intermediate; any other character is Invalid, with commas and blanks as above.
class QIpNetmaskValidator : public QValidator
{
    Q_OBJECT

public:
    explicit QIpNetmaskValidator(QObject* parent);

    State validate(QString& input, int& pos) const override;
    /// Turns "24" and "/24" into 255.255.255.0 and strips leading zeros of the parts; leaves any other text
    /// unchanged.
    void fixup(QString& input) const override;
};
