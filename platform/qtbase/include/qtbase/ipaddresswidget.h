#pragma once

#include "advice/advice.h"

#include <QDialog>
#include <QHostAddress>

#include <map>
#include <memory>

class AdviceSign;
class QLineEdit;
class Ui_IpAddressWidget;

/// Dialog that asks for an address, a mask, a gateway and, if wanted, a MAC address. It names the camera and
/// warns of what cannot work. OK is grey until everything is complete, and that is all that is refused here;
/// the caller does the rest and may show the dialog again with what was typed. Each time it is shown, the
/// first field has the focus and the cursor stands at its end.
///
/// While the user types an address, the mask follows it (subnetFromAddress), until the user types a mask;
/// emptying the mask field lets it follow again.
class IpAddressWidget : public QDialog
{
    Q_OBJECT

public:
    explicit IpAddressWidget(QWidget* parent = nullptr);
    Q_DISABLE_COPY_MOVE(IpAddressWidget)
    ~IpAddressWidget() override;

    /// Rich text, or plain text with line breaks, at the top of the dialog.
    void setHeaderText(const QString& text);
    /// What made the dialog necessary, in a line of its own below the header, with technical details as its
    /// tool tip; both are plain text. An empty sentence takes no place.
    void setReason(const QString& sentence, const QString& technicalText);
    /// What the camera's name and the advice come from; nothing is known at first.
    void setSurroundings(advice::Surroundings surroundings);
    /// Off at first.
    void setShowMacAddress(bool show);
    void setIpAddress(const QString& text);
    void setSubnetMask(const QString& text);
    void setDefaultGateway(const QString& text);
    /// Twelve hexadecimal digits are shown as pairs; a text that is no MAC address leaves the maker's prefix.
    void setMacAddress(const QString& text);

    [[nodiscard]] QString ipAddress() const;
    [[nodiscard]] QString subnetMask() const;
    [[nodiscard]] QString defaultGateway() const;
    [[nodiscard]] QString macAddress() const;

    /// All fields at once, as they are.
    [[nodiscard]] advice::Entry entry() const;
    void setEntry(const advice::Entry& entry);

    /// The mask of the host subnet that holds the address, else the classful one (169.254 is /16); null for
    /// what is no unicast address.
    [[nodiscard]] static QHostAddress subnetFromAddress(const QHostAddress& address);

    void setVisible(bool visible) override;

protected:
    /// Enter that is held down accepts nothing: it may have been held since before the dialog was there.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void createAdviceSigns();
    void takeMaskLength(QLineEdit* edit);
    void followAddress(const QString& text);
    void showCamera();
    void showAdvice();

    std::unique_ptr<Ui_IpAddressWidget> ui;
    std::map<advice::Field, AdviceSign*> m_signs;
    advice::Surroundings m_surroundings;
    bool m_maskTyped = false;
};
