<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>Finds every GigE Vision camera on this computer&apos;s networks, also those with a wrong address, shows what is the matter with each and gives it the right address.</source>
        <translation>Findet jede GigE-Vision-Kamera in den Netzwerken dieses Rechners, auch solche mit falscher Adresse, zeigt, was ihr fehlt, und gibt ihr die richtige Adresse.</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Copyright © %1 %2</source>
        <translation>Copyright © %1 %2</translation>
    </message>
</context>
<context>
    <name>Advice</name>
    <message>
        <source>The MAC address is incomplete: it has twelve digits, 0 to 9 and A to F.</source>
        <translation>Die MAC-Adresse ist unvollständig: Sie hat zwölf Stellen, 0 bis 9 und A bis F.</translation>
    </message>
    <message>
        <source>The subnet mask is incomplete: it has four numbers, such as 255.255.255.0, or is a length, such as /24, which becomes one when you leave the field.</source>
        <translation>Die Subnetzmaske ist unvollständig: Sie hat vier Zahlen, wie 255.255.255.0, oder ist eine Länge, wie /24, aus der eine Maske wird, wenn Sie das Feld verlassen.</translation>
    </message>
    <message>
        <source>The gateway is incomplete: it has four numbers from 0 to 255 with dots between them, or the field is empty.</source>
        <translation>Das Gateway ist unvollständig: Es hat vier Zahlen von 0 bis 255 mit Punkten dazwischen, oder das Feld ist leer.</translation>
    </message>
    <message>
        <source>The IP address is incomplete: it has four numbers from 0 to 255 with dots between them.</source>
        <translation>Die IP-Adresse ist unvollständig: Sie hat vier Zahlen von 0 bis 255 mit Punkten dazwischen.</translation>
    </message>
    <message>
        <source>%1 stands for a whole network, under the mask %2. No device can have it.</source>
        <translation>%1 steht bei der Maske %2 für ein ganzes Netz. Kein Gerät kann diese Adresse haben.</translation>
    </message>
    <message>
        <source>%1 addresses all devices of a network at once, under the mask %2. No device can have it.</source>
        <translation>%1 spricht bei der Maske %2 alle Geräte eines Netzes zugleich an. Kein Gerät kann diese Adresse haben.</translation>
    </message>
    <message>
        <source>%1 is this computer&apos;s own address on %2. A camera with it cannot be reached.</source>
        <translation>%1 ist die eigene Adresse dieses Rechners an %2. Mit ihr ist eine Kamera nicht erreichbar.</translation>
    </message>
    <message>
        <source>%1 is the address of another camera: %2. With the same address, neither can be reached reliably.</source>
        <translation>%1 ist die Adresse einer anderen Kamera: %2. Mit derselben Adresse ist keine der beiden zuverlässig erreichbar.</translation>
    </message>
    <message>
        <source>The gateway %1 is not in the camera&apos;s network. Leave the field empty if there is no router.</source>
        <translation>Das Gateway %1 ist nicht im Netz der Kamera. Lassen Sie das Feld leer, wenn es keinen Router gibt.</translation>
    </message>
    <message>
        <source>The gateway %1 is the camera&apos;s own address. Leave the field empty if there is no router.</source>
        <translation>Das Gateway %1 ist die eigene Adresse der Kamera. Lassen Sie das Feld leer, wenn es keinen Router gibt.</translation>
    </message>
    <message>
        <source>The subnet mask is missing.</source>
        <translation>Die Subnetzmaske fehlt.</translation>
    </message>
    <message>
        <source>The IP address is missing.</source>
        <translation>Die IP-Adresse fehlt.</translation>
    </message>
    <message>
        <source>Without an address, the camera restarts its IP configuration.</source>
        <translation>Ohne Adresse startet die Kamera ihre IP-Konfiguration neu.</translation>
    </message>
    <message>
        <source>%1 has a special meaning. No camera can have it.</source>
        <translation>%1 hat eine besondere Bedeutung. Keine Kamera kann diese Adresse haben.</translation>
    </message>
    <message>
        <source>%1 is in no network of %2. The camera can then not be reached through %2.</source>
        <translation>%1 liegt in keinem Netz von %2. Die Kamera ist dann über %2 nicht erreichbar.</translation>
    </message>
    <message>
        <source>%1 is in no network of this computer. The camera can then not be reached.</source>
        <translation>%1 liegt in keinem Netz dieses Rechners. Die Kamera ist dann nicht erreichbar.</translation>
    </message>
    <message>
        <source>%1 is not a subnet mask. A valid one is, for example, 255.255.255.0.</source>
        <translation>%1 ist keine Subnetzmaske. Gültig ist zum Beispiel 255.255.255.0.</translation>
    </message>
    <message>
        <source>%1 has the mask %2 in this network. With another one, applications may not find the camera.</source>
        <translation>%1 hat in diesem Netz die Maske %2. Mit einer anderen finden Anwendungen die Kamera vielleicht nicht.</translation>
    </message>
    <message>
        <source>The IP address typed before is written as well, and a camera may refuse it. Choose Static IP again, then finish the address or empty the field.</source>
        <translation>Die zuvor eingegebene IP-Adresse wird mitgeschrieben, und eine Kamera lehnt sie vielleicht ab. Wählen Sie wieder Statische IP, und vervollständigen Sie die Adresse oder leeren Sie das Feld.</translation>
    </message>
    <message>
        <source>MAC address %1</source>
        <translation>MAC-Adresse %1</translation>
    </message>
</context>
<context>
    <name>Confirmation</name>
    <message>
        <source>%1: %2 was saved; the camera reports %3.</source>
        <translation>%1: gespeichert wurde %2; die Kamera meldet %3.</translation>
    </message>
    <message>
        <source>nothing</source>
        <translation>nichts</translation>
    </message>
    <message>
        <source>IP configuration</source>
        <translation>IP-Konfiguration</translation>
    </message>
    <message>
        <source>IP address</source>
        <translation>IP-Adresse</translation>
    </message>
    <message>
        <source>Subnet mask</source>
        <translation>Subnetzmaske</translation>
    </message>
    <message>
        <source>Default gateway</source>
        <translation>Standardgateway</translation>
    </message>
    <message>
        <source>Device user ID</source>
        <translation>Benutzer-ID</translation>
    </message>
</context>
<context>
    <name>Explanations</name>
    <message>
        <source>The camera %1 with the MAC address %2 has the same address. One of them needs another.</source>
        <translation>Die Kamera %1 mit der MAC-Adresse %2 hat dieselbe Adresse. Eine von beiden braucht eine andere.</translation>
    </message>
    <message>
        <source>The camera with the MAC address %1 has the same address. One of them needs another.</source>
        <translation>Die Kamera mit der MAC-Adresse %1 hat dieselbe Adresse. Eine von beiden braucht eine andere.</translation>
    </message>
    <message>
        <source>The camera answers the search, but its address is not in a network of %1.</source>
        <translation>Die Kamera antwortet auf die Suche, aber ihre Adresse liegt in keinem Netz von %1.</translation>
    </message>
    <message>
        <source>The camera answers the search, but not at its own address. It may be restarting.</source>
        <translation>Die Kamera antwortet auf die Suche, aber nicht unter ihrer eigenen Adresse. Vielleicht startet sie gerade neu.</translation>
    </message>
    <message>
        <source>The camera answers at its address and no application controls it.</source>
        <translation>Die Kamera antwortet unter ihrer Adresse, und keine Anwendung steuert sie.</translation>
    </message>
    <message>
        <source>Another application controls the camera.</source>
        <translation>Eine andere Anwendung steuert die Kamera.</translation>
    </message>
    <message>
        <source>An application on the computer %1 controls the camera.</source>
        <translation>Eine Anwendung auf dem Rechner %1 steuert die Kamera.</translation>
    </message>
    <message>
        <source>Another application has exclusive access to the camera.</source>
        <translation>Eine andere Anwendung hat exklusiven Zugriff auf die Kamera.</translation>
    </message>
    <message>
        <source>An application on the computer %1 has exclusive access to the camera.</source>
        <translation>Eine Anwendung auf dem Rechner %1 hat exklusiven Zugriff auf die Kamera.</translation>
    </message>
    <message>
        <source>The camera answers, but does not tell whether an application controls it.</source>
        <translation>Die Kamera antwortet, sagt aber nicht, ob eine Anwendung sie steuert.</translation>
    </message>
    <message>
        <source>Another camera has the same MAC address: %1 at %2.</source>
        <translation>Eine andere Kamera hat dieselbe MAC-Adresse: %1 unter %2.</translation>
    </message>
    <message>
        <source>Another camera has the same MAC address, at %1.</source>
        <translation>Eine andere Kamera hat dieselbe MAC-Adresse, unter %1.</translation>
    </message>
</context>
<context>
    <name>Failures</name>
    <message>
        <source>the new device user ID</source>
        <translation>die neue Benutzer-ID</translation>
    </message>
    <message>
        <source>the new IP configuration</source>
        <translation>die neue IP-Konfiguration</translation>
    </message>
    <message>
        <source>the new IP address</source>
        <translation>die neue IP-Adresse</translation>
    </message>
    <message>
        <source>the new subnet mask</source>
        <translation>die neue Subnetzmaske</translation>
    </message>
    <message>
        <source>the new gateway</source>
        <translation>das neue Gateway</translation>
    </message>
    <message>
        <source>the temporary address</source>
        <translation>die temporäre Adresse</translation>
    </message>
    <message>
        <source>the new value</source>
        <translation>den neuen Wert</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>The camera %1 confirmed %2 but did not keep it.</source>
        <translation>Die Kamera %1 hat %2 bestätigt, aber nicht behalten.</translation>
    </message>
    <message>
        <source>The camera %1 confirmed %2 but reports %3.</source>
        <translation>Die Kamera %1 hat %2 bestätigt, meldet aber %3.</translation>
    </message>
    <message>
        <source>This computer cannot reach the address %1 through any of its network adapters.</source>
        <translation>Dieser Rechner erreicht die Adresse %1 über keinen seiner Netzwerkadapter.</translation>
    </message>
    <message>
        <source>This computer could not use its network.</source>
        <translation>Dieser Rechner konnte sein Netzwerk nicht benutzen.</translation>
    </message>
    <message>
        <source>This computer could not send anything to the camera %1.</source>
        <translation>Dieser Rechner konnte nichts an die Kamera %1 senden.</translation>
    </message>
    <message>
        <source>This computer could not send the camera %1 %2.</source>
        <translation>Dieser Rechner konnte der Kamera %1 %2 nicht senden.</translation>
    </message>
    <message>
        <source>The camera %1 is controlled by another application.</source>
        <translation>Die Kamera %1 wird von einer anderen Anwendung gesteuert.</translation>
    </message>
    <message>
        <source>The camera %1 is controlled by another application, on the computer %2.</source>
        <translation>Die Kamera %1 wird von einer anderen Anwendung auf dem Rechner %2 gesteuert.</translation>
    </message>
    <message>
        <source>“%1” is not a MAC address, which has twelve hexadecimal digits.</source>
        <translation>„%1“ ist keine MAC-Adresse. Sie hat zwölf hexadezimale Ziffern.</translation>
    </message>
    <message>
        <source>The device user ID “%1” is too long for the camera.</source>
        <translation>Die Benutzer-ID „%1“ ist für die Kamera zu lang.</translation>
    </message>
    <message>
        <source>“%1” is not a subnet mask. It takes four numbers from 0 to 255 with dots between them.</source>
        <translation>„%1“ ist keine Subnetzmaske. Sie besteht aus vier Zahlen von 0 bis 255 mit Punkten dazwischen.</translation>
    </message>
    <message>
        <source>“%1” is not an IP address. It takes four numbers from 0 to 255 with dots between them.</source>
        <translation>„%1“ ist keine IP-Adresse. Sie besteht aus vier Zahlen von 0 bis 255 mit Punkten dazwischen.</translation>
    </message>
    <message>
        <source>The camera %1 kept asking for more time and never confirmed %2.</source>
        <translation>Die Kamera %1 hat immer wieder um mehr Zeit gebeten und %2 nie bestätigt.</translation>
    </message>
    <message>
        <source>The camera %1 kept asking for more time and never granted control.</source>
        <translation>Die Kamera %1 hat immer wieder um mehr Zeit gebeten und die Steuerung nie freigegeben.</translation>
    </message>
    <message>
        <source>The camera %1 kept asking for more time and never answered.</source>
        <translation>Die Kamera %1 hat immer wieder um mehr Zeit gebeten und nie geantwortet.</translation>
    </message>
    <message>
        <source>The camera %1 refused %2.</source>
        <translation>Die Kamera %1 hat %2 abgelehnt.</translation>
    </message>
    <message>
        <source>The camera %1 refused to be controlled by this program.</source>
        <translation>Die Kamera %1 lässt sich von diesem Programm nicht steuern.</translation>
    </message>
    <message>
        <source>The camera %1 refused to give information about itself.</source>
        <translation>Die Kamera %1 hat keine Auskunft über sich gegeben.</translation>
    </message>
    <message>
        <source>The camera %1 refused the request.</source>
        <translation>Die Kamera %1 hat die Anfrage abgelehnt.</translation>
    </message>
    <message>
        <source>The camera %1 gave no usable answer when it was given %2.</source>
        <translation>Die Kamera %1 hat keine brauchbare Antwort gegeben, als sie %2 übernehmen sollte.</translation>
    </message>
    <message>
        <source>The camera %1 gave no usable answer when this program asked for control.</source>
        <translation>Die Kamera %1 hat keine brauchbare Antwort gegeben, als dieses Programm die Steuerung übernehmen wollte.</translation>
    </message>
    <message>
        <source>The camera %1 gave no usable answer.</source>
        <translation>Die Kamera %1 hat keine brauchbare Antwort gegeben.</translation>
    </message>
    <message>
        <source>The camera %1 is busy and did not take %2.</source>
        <translation>Die Kamera %1 ist beschäftigt und hat %2 nicht angenommen.</translation>
    </message>
    <message>
        <source>The camera %1 is busy and cannot be controlled at the moment.</source>
        <translation>Die Kamera %1 ist beschäftigt und lässt sich im Moment nicht steuern.</translation>
    </message>
    <message>
        <source>The camera %1 is busy.</source>
        <translation>Die Kamera %1 ist beschäftigt.</translation>
    </message>
    <message>
        <source>The camera %1 did not answer when it was given %2.</source>
        <translation>Die Kamera %1 hat nicht geantwortet, als sie %2 übernehmen sollte.</translation>
    </message>
    <message>
        <source>The camera %1 did not answer when this program asked for control.</source>
        <translation>Die Kamera %1 hat nicht geantwortet, als dieses Programm die Steuerung übernehmen wollte.</translation>
    </message>
    <message>
        <source>The camera %1 did not answer.</source>
        <translation>Die Kamera %1 hat nicht geantwortet.</translation>
    </message>
    <message>
        <source>Two cameras have the address %1, those with the MAC addresses %2 and %3.</source>
        <translation>Zwei Kameras haben die Adresse %1, die mit den MAC-Adressen %2 und %3.</translation>
    </message>
    <message>
        <source>The address %1 is that of another camera (MAC address %2).</source>
        <translation>Die Adresse %1 gehört einer anderen Kamera (MAC-Adresse %2).</translation>
    </message>
    <message>
        <source>The address %1, which was given to the camera %2, is also that of the camera %3.</source>
        <translation>Die Adresse %1, die die Kamera %2 bekommen hat, hat auch die Kamera %3.</translation>
    </message>
    <message>
        <source>The camera %1 was given the address %2 but has %3.</source>
        <translation>Die Kamera %1 sollte die Adresse %2 bekommen, hat aber %3.</translation>
    </message>
    <message>
        <source>The camera %1 has no IP address yet.</source>
        <translation>Die Kamera %1 hat noch keine IP-Adresse.</translation>
    </message>
    <message>
        <source>The camera %1 does not let its device user ID be changed.</source>
        <translation>Die Benutzer-ID der Kamera %1 lässt sich nicht ändern.</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 und %2</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>It already has %1.</source>
        <translation>Schon übernommen hat sie %1.</translation>
    </message>
    <message>
        <source>Check whether it is still connected, then try again.</source>
        <translation>Prüfen Sie, ob sie noch angeschlossen ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Wait a moment, then try again.</source>
        <translation>Warten Sie einen Moment, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Check the network adapter and its cable.</source>
        <translation>Prüfen Sie den Netzwerkadapter und sein Kabel.</translation>
    </message>
    <message>
        <source>Close the connection there, then try again.</source>
        <translation>Beenden Sie die Verbindung dort, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>One of them needs another address first.</source>
        <translation>Eine von beiden braucht zuerst eine andere Adresse.</translation>
    </message>
    <message>
        <source>Refresh the list, or choose another temporary address.</source>
        <translation>Aktualisieren Sie die Liste, oder wählen Sie eine andere temporäre Adresse.</translation>
    </message>
    <message>
        <source>Choose another temporary address.</source>
        <translation>Wählen Sie eine andere temporäre Adresse.</translation>
    </message>
    <message>
        <source>Try again, or choose another temporary address.</source>
        <translation>Versuchen Sie es noch einmal, oder wählen Sie eine andere temporäre Adresse.</translation>
    </message>
</context>
<context>
    <name>Formatting</name>
    <message>
        <source>Static IP</source>
        <translation>Statische IP</translation>
    </message>
    <message>
        <source>DHCP</source>
        <translation>DHCP</translation>
    </message>
    <message>
        <source>Auto IP (LLA)</source>
        <translation>Auto-IP (LLA)</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>HelpAndSupport</name>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>down</source>
        <translation>abgeschaltet</translation>
    </message>
    <message>
        <source>up</source>
        <translation>aktiv</translation>
    </message>
    <message>
        <source>up, not connected</source>
        <translation>aktiv, nicht verbunden</translation>
    </message>
    <message>
        <source>Ethernet at %1 Mbit/s</source>
        <translation>Ethernet mit %1 Mbit/s</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>Ethernet</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>WLAN</translation>
    </message>
    <message>
        <source>loopback</source>
        <translation>Loopback</translation>
    </message>
    <message>
        <source>other kind</source>
        <translation>anderer Art</translation>
    </message>
    <message>
        <source>%1: %2, %3, MTU %4, rp_filter %5, %6</source>
        <translation>%1: %2, %3, MTU %4, rp_filter %5, %6</translation>
    </message>
    <message>
        <source>no IPv4 address</source>
        <translation>keine IPv4-Adresse</translation>
    </message>
    <message>
        <source>Default route: %1</source>
        <translation>Standardroute: %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Receive buffer: at most %1 bytes</source>
        <translation>Empfangspuffer: höchstens %1 Byte</translation>
    </message>
    <message>
        <source>Network adapters (rp_filter of all: %1):</source>
        <translation>Netzwerkadapter (rp_filter für alle: %1):</translation>
    </message>
    <message>
        <source>Submit Feedback</source>
        <translation>Feedback senden</translation>
    </message>
    <message>
        <source>No browser could be started.</source>
        <translation>Es konnte kein Browser gestartet werden.</translation>
    </message>
    <message>
        <source>Please open this address yourself:
%1</source>
        <translation>Bitte öffnen Sie diese Adresse selbst:
%1</translation>
    </message>
    <message>
        <source>%1: support request</source>
        <translation>%1: Supportanfrage</translation>
    </message>
    <message>
        <source>Please describe what happened:


%1</source>
        <translation>Bitte beschreiben Sie, was geschehen ist:


%1</translation>
    </message>
    <message>
        <source>E-mail: %1</source>
        <translation>E-Mail: %1</translation>
    </message>
    <message>
        <source>Program: %1 %2 (%3)</source>
        <translation>Programm: %1 %2 (%3)</translation>
    </message>
    <message>
        <source>Tessal camera SDK: %1, part of the program</source>
        <translation>Tessal-Kamera-SDK: %1, Teil des Programms</translation>
    </message>
    <message>
        <source>Qt: %1 on %2</source>
        <translation>Qt: %1 auf %2</translation>
    </message>
    <message>
        <source>System: %1</source>
        <translation>System: %1</translation>
    </message>
    <message>
        <source>Kernel: %1 %2</source>
        <translation>Kernel: %1 %2</translation>
    </message>
    <message>
        <source>index.html</source>
        <extracomment>The help page in this language, as a path in docs/help.</extracomment>
        <translation>de/index.html</translation>
    </message>
</context>
<context>
    <name>IpAddressWidget</name>
    <message>
        <source>M&amp;AC Address:</source>
        <translation>MA&amp;C-Adresse:</translation>
    </message>
    <message>
        <source>&amp;IP Address:</source>
        <translation>&amp;IP-Adresse:</translation>
    </message>
    <message>
        <source>Subnet &amp;Mask:</source>
        <translation>Subnetz&amp;maske:</translation>
    </message>
    <message>
        <source>Default &amp;Gateway:</source>
        <translation>Standard-&amp;Gateway:</translation>
    </message>
    <message>
        <source>Camera:</source>
        <translation>Kamera:</translation>
    </message>
    <message>
        <source>not in the list</source>
        <translation>nicht in der Liste</translation>
    </message>
</context>
<context>
    <name>IpConfigurationWidget</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Device User ID</source>
        <translation>Benutzer-ID</translation>
    </message>
    <message>
        <source>Serial Number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>MAC Address</source>
        <translation>MAC-Adresse</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>IP Configuration</source>
        <translation>IP-Konfiguration</translation>
    </message>
    <message>
        <source>IP Address</source>
        <translation>IP-Adresse</translation>
    </message>
    <message>
        <source>Subnet Mask</source>
        <translation>Subnetzmaske</translation>
    </message>
    <message>
        <source>Alt+Shift+Ctrl+N</source>
        <translation>Alt+Shift+Ctrl+N</translation>
    </message>
    <message>
        <source>Alt+Shift+Ctrl+F</source>
        <translation>Alt+Shift+Ctrl+F</translation>
    </message>
    <message>
        <source>Valid addresses are:&lt;br&gt;</source>
        <translation>Gültige Adressen sind:&lt;br&gt;</translation>
    </message>
    <message>
        <source>Unknown exception occurred</source>
        <translation>Eine unbekannte Ausnahme ist aufgetreten</translation>
    </message>
    <message>
        <source>Trying to establish a connection to the device...</source>
        <translation>Es wird versucht, eine Verbindung zum Gerät herzustellen...</translation>
    </message>
    <message>
        <source>Connection failed</source>
        <translation>Verbindung fehlgeschlagen</translation>
    </message>
    <message>
        <source>The device must be a GEV Camera.</source>
        <translation>Das Gerät muss eine GEV-Kamera sein.</translation>
    </message>
    <message>
        <source>The connection to the device could not be established.</source>
        <translation>Die Verbindung zum Gerät konnte nicht hergestellt werden.</translation>
    </message>
    <message>
        <source>Access denied
The device is controlled by another application.
Close the connection before changing the IP configuration.</source>
        <translation>Zugriff verweigert
Das Gerät wird von einer anderen Anwendung gesteuert.
Beenden Sie deren Verbindung, bevor Sie die IP-Konfiguration ändern.</translation>
    </message>
    <message>
        <source>A connection to the device must be established in order to change the configuration.&lt;br&gt;To do this, a temporary IP address needs to be assigned to the device.&lt;br&gt;This temporary address will only be used to update the configuration and will not be stored on the device.</source>
        <translation>Um die Konfiguration zu ändern, muss eine Verbindung zum Gerät hergestellt werden.&lt;br&gt;Dazu muss dem Gerät eine temporäre IP-Adresse zugewiesen werden.&lt;br&gt;Diese temporäre Adresse dient nur zum Ändern der Konfiguration und wird nicht im Gerät gespeichert.</translation>
    </message>
    <message>
        <source>Assign Temporary IP Address (Force IP)</source>
        <translation>Temporäre IP-Adresse zuweisen (Force IP)</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used.</source>
        <translation>Die IP-Adressen 127.0.0.1 und 224.0.0.0 bis 255.255.255.255 können nicht verwendet werden.</translation>
    </message>
    <message>
        <source>Please specify a temporary IP address.&lt;br&gt;This address will be valid until the device resets.</source>
        <translation>Bitte geben Sie eine temporäre IP-Adresse an.&lt;br&gt;Diese Adresse gilt, bis das Gerät neu startet.</translation>
    </message>
    <message>
        <source>Please specify the MAC address for the device to force the IP address.

There won&apos;t be any error message in case you specify the wrong MAC address.</source>
        <translation>Bitte geben Sie die MAC-Adresse des Geräts an, dem die IP-Adresse zugewiesen werden soll.

Eine falsche MAC-Adresse führt zu keiner Fehlermeldung.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;The device is currently in use by another application!&lt;/p&gt;&lt;p&gt;Please close any applications currently using the device and click &lt;b&gt;Refresh&lt;/b&gt; to check the status again.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Das Gerät wird gerade von einer anderen Anwendung benutzt!&lt;/p&gt;&lt;p&gt;Bitte schließen Sie alle Anwendungen, die das Gerät benutzen, und klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt;, um den Status erneut zu prüfen.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;There was an error while trying to determine the accessibility status of the device.&lt;/p&gt;Try refreshing the list by clicking &lt;b&gt;Refresh&lt;/b&gt;.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Der Zugriffsstatus des Geräts konnte nicht ermittelt werden.&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt;, um es mit der Liste erneut zu versuchen.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;The device is unreachable!&lt;/p&gt;&lt;p&gt;Currently you will not be able to use the device.&lt;/p&gt;Please make sure the IP address is in the same subnet as the adapter the device is connected to.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Das Gerät ist nicht erreichbar!&lt;/p&gt;&lt;p&gt;Sie können es zurzeit nicht benutzen.&lt;/p&gt;Bitte sorgen Sie dafür, dass seine IP-Adresse im selben Subnetz liegt wie der Adapter, an den es angeschlossen ist.</translation>
    </message>
    <message>
        <source>&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Address:&lt;/td&gt;&lt;td width=&apos;100&apos; align=&apos;right&apos;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;&lt;/td&gt;&lt;td&gt;Subnet Mask:&lt;/td&gt;&lt;td align=&apos;right&apos;&gt;%2&lt;/td&gt;&lt;/tr&gt;</source>
        <translation>&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Adresse:&lt;/td&gt;&lt;td width=&apos;100&apos; align=&apos;right&apos;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;&lt;/td&gt;&lt;td&gt;Subnetzmaske:&lt;/td&gt;&lt;td align=&apos;right&apos;&gt;%2&lt;/td&gt;&lt;/tr&gt;</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;table align=&apos;left&apos; border=&apos;0&apos; cellpadding=&apos;1&apos; cellspacing=&apos;1&apos;&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Vendor:&lt;/td&gt;&lt;td&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Model Name:&lt;/td&gt;&lt;td&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Device User ID:&lt;/td&gt;&lt;td&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Serial Number:&lt;/td&gt;&lt;td&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;MAC Address:&lt;/td&gt;&lt;td&gt;%5&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Configuration:&lt;/td&gt;&lt;td&gt;%6&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Address:&lt;/td&gt;&lt;td&gt;%7&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Subnet Mask:&lt;/td&gt;&lt;td&gt;%8&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Gateway:&lt;/td&gt;&lt;td&gt;%9&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;table align=&apos;left&apos; border=&apos;0&apos; cellpadding=&apos;1&apos; cellspacing=&apos;1&apos;&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Hersteller:&lt;/td&gt;&lt;td&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Modell:&lt;/td&gt;&lt;td&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Benutzer-ID:&lt;/td&gt;&lt;td&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Seriennummer:&lt;/td&gt;&lt;td&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;MAC-Adresse:&lt;/td&gt;&lt;td&gt;%5&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Konfiguration:&lt;/td&gt;&lt;td&gt;%6&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Adresse:&lt;/td&gt;&lt;td&gt;%7&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Subnetzmaske:&lt;/td&gt;&lt;td&gt;%8&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Gateway:&lt;/td&gt;&lt;td&gt;%9&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;&lt;/p&gt;</translation>
    </message>
    <message>
        <source>The configuration could not be saved.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>&lt;p&gt;No devices found!&lt;/p&gt;Click &lt;b&gt;Refresh&lt;/b&gt; or press &lt;b&gt;F5&lt;/b&gt; to search for devices.</source>
        <translation>&lt;p&gt;Keine Geräte gefunden!&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt; oder drücken Sie &lt;b&gt;F5&lt;/b&gt;, um nach Geräten zu suchen.</translation>
    </message>
    <message>
        <source>Possible addresses are:&lt;br&gt;</source>
        <translation>Mögliche Adressen sind:&lt;br&gt;</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;&lt;p&gt;The network adapter and the device are currently not in the same subnet. Therefore, the device will currently not be visible to applications.&lt;/p&gt;&lt;p&gt;Make sure the device and the network adapter share the same network prefix and subnet mask.&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;&lt;p&gt;Netzwerkadapter und Gerät liegen zurzeit nicht im selben Subnetz. Deshalb ist das Gerät für Anwendungen nicht sichtbar.&lt;/p&gt;&lt;p&gt;Sorgen Sie dafür, dass Gerät und Netzwerkadapter dasselbe Netzwerkpräfix und dieselbe Subnetzmaske haben.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Assign Temporary IP Address...</source>
        <translation>&amp;Temporäre IP-Adresse zuweisen...</translation>
    </message>
    <message>
        <source>Do you want to save the changes to the configuration?</source>
        <translation>Möchten Sie die Änderungen an der Konfiguration speichern?</translation>
    </message>
    <message>
        <source>The configuration could not be saved.
Would you like to continue closing the application?

If you click &apos;Yes&apos;, your configuration will not be changed and the application will close.
If you click &apos;No&apos;, you will return to the application.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.
Möchten Sie die Anwendung trotzdem schließen?

Wenn Sie auf „Ja“ klicken, wird die Konfiguration nicht geändert und die Anwendung geschlossen.
Wenn Sie auf „Nein“ klicken, kehren Sie zur Anwendung zurück.</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Not Reachable</source>
        <translation>Unerreichbar</translation>
    </message>
    <message>
        <source>In use</source>
        <translation>Belegt</translation>
    </message>
    <message>
        <source>Failed to enumerate devices</source>
        <translation>Die Geräte konnten nicht aufgelistet werden</translation>
    </message>
    <message>
        <source>&lt;p&gt;No active network networkAdapter found!&lt;/p&gt;&lt;p&gt;Please make sure your network adapters are enabled and working correctly.&lt;/p&gt;Click &lt;b&gt;Refresh&lt;/b&gt; or press &lt;b&gt;F5&lt;/b&gt; to refresh the list of adapters.</source>
        <translation>&lt;p&gt;Kein aktiver Netzwerkadapter gefunden!&lt;/p&gt;&lt;p&gt;Bitte sorgen Sie dafür, dass Ihre Netzwerkadapter eingeschaltet sind und richtig arbeiten.&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt; oder drücken Sie &lt;b&gt;F5&lt;/b&gt;, um die Liste der Adapter zu aktualisieren.</translation>
    </message>
    <message>
        <source>The configuration could not be saved.
The Refresh operation has been canceled.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.
Das Aktualisieren wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Searching for devices...</source>
        <translation>Geräte werden gesucht...</translation>
    </message>
    <message>
        <source>Camera restarts its IP configuration cycle.
Waiting until the device has been discovered again...</source>
        <translation>Die Kamera beginnt ihre IP-Konfiguration von vorn.
Es wird gewartet, bis das Gerät wieder gefunden ist...</translation>
    </message>
    <message>
        <source>Could not update DeviceUserID.</source>
        <translation>Die Benutzer-ID (DeviceUserID) konnte nicht geändert werden.</translation>
    </message>
    <message>
        <source>Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.</source>
        <translation>Ungültige IP-Adresse. Die IP-Adressen 224.0.0.0 bis 255.255.255.255 und 127.0.0.1 sind nicht erlaubt.</translation>
    </message>
    <message>
        <source>Failed to discover reconfigured device</source>
        <translation>Das neu konfigurierte Gerät wurde nicht wiedergefunden</translation>
    </message>
    <message>
        <source>The camera %1 does not report what was saved.</source>
        <translation>Die Kamera %1 meldet etwas anderes, als gespeichert wurde.</translation>
    </message>
    <message>
        <source>No camera is selected.</source>
        <translation>Es ist keine Kamera ausgewählt.</translation>
    </message>
    <message>
        <source>It is not known whether the camera can be configured. Refresh the list.</source>
        <translation>Es ist nicht bekannt, ob die Kamera konfiguriert werden kann. Aktualisieren Sie die Liste.</translation>
    </message>
    <message>
        <source>Another application is using the camera.</source>
        <translation>Eine andere Anwendung benutzt die Kamera.</translation>
    </message>
    <message>
        <source>Nothing has been changed.</source>
        <translation>Es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>The device user ID is too long.</source>
        <translation>Die Benutzer-ID ist zu lang.</translation>
    </message>
    <message>
        <source>A temporary address: the camera has it until it restarts.</source>
        <translation>Eine temporäre Adresse: Die Kamera hat sie, bis sie neu startet.</translation>
    </message>
</context>
<context>
    <name>IpConfigurationWidgetClass</name>
    <message>
        <source>Network adapters and cameras</source>
        <translation>Netzwerkadapter und Kameras</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
    <message>
        <source>2</source>
        <translation>2</translation>
    </message>
    <message>
        <source>3</source>
        <translation>3</translation>
    </message>
    <message>
        <source>4</source>
        <translation>4</translation>
    </message>
    <message>
        <source>5</source>
        <translation>5</translation>
    </message>
    <message>
        <source>Configuration of the selected camera</source>
        <translation>Konfiguration der ausgewählten Kamera</translation>
    </message>
    <message>
        <source>S&amp;tatic IP</source>
        <translation>S&amp;tatische IP</translation>
    </message>
    <message>
        <source>&amp;Gateway:</source>
        <translation>&amp;Gateway:</translation>
    </message>
    <message>
        <source>Subnet &amp;Mask:</source>
        <translation>Subnetz&amp;maske:</translation>
    </message>
    <message>
        <source>&amp;IP Address:</source>
        <translation>&amp;IP-Adresse:</translation>
    </message>
    <message>
        <source>&amp;DHCP</source>
        <translation>D&amp;HCP</translation>
    </message>
    <message>
        <source>&amp;Auto IP (LLA)</source>
        <translation>A&amp;uto-IP (LLA)</translation>
    </message>
    <message>
        <source>Device &amp;User ID:</source>
        <translation>&amp;Benutzer-ID:</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Ctrl+S</translation>
    </message>
    <message>
        <source>What the selected row stands for</source>
        <translation>Wofür die ausgewählte Zeile steht</translation>
    </message>
    <message>
        <source>Selection Info</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>What is the matter and what to do about it</source>
        <translation>Was nicht stimmt und was dagegen zu tun ist</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
</context>
<context>
    <name>MainWnd</name>
    <message>
        <source>Tessal Lanvic</source>
        <translation>Tessal Lanvic</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>&amp;?</source>
        <translation>&amp;?</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>View &amp;Help</source>
        <translation>&amp;Hilfe anzeigen</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>&amp;About Tessal Lanvic</source>
        <translation>Ü&amp;ber Tessal Lanvic</translation>
    </message>
    <message>
        <source>Submit &amp;Feedback...</source>
        <translation>&amp;Feedback senden...</translation>
    </message>
    <message>
        <source>&amp;Contact Orvik Support...</source>
        <translation>Orvik-Support &amp;kontaktieren...</translation>
    </message>
    <message>
        <source>Contact Orvik Support</source>
        <translation>Orvik-Support kontaktieren</translation>
    </message>
    <message>
        <source>In order to contact Orvik support, you can copy the information (e-mail address and Tessal information) to your clipboard.

The copied information is visible via “Show Details”.

Afterwards you can send this information to the indicated address (visible via “Show Details”).</source>
        <translation>Um den Orvik-Support zu kontaktieren, können Sie die Angaben (E-Mail-Adresse und Tessal-Angaben) in die Zwischenablage kopieren.

Die kopierten Angaben sehen Sie über „Details einblenden“.

Danach können Sie sie an die angegebene Adresse senden (zu sehen über „Details einblenden“).</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>E-Mail information copied to clipboard successfully.</source>
        <translation>Die E-Mail-Angaben wurden in die Zwischenablage kopiert.</translation>
    </message>
</context>
<context>
    <name>Messages</name>
    <message>
        <source>The operation failed for an unexpected reason. The details say more.</source>
        <translation>Der Vorgang ist aus einem unerwarteten Grund fehlgeschlagen. Näheres steht in den Details.</translation>
    </message>
    <message>
        <source>Operation: %1</source>
        <translation>Vorgang: %1</translation>
    </message>
</context>
<context>
    <name>Obstacles</name>
    <message>
        <source>Cameras with an address of another network are not seen through %1: the strict reverse-path filter of this system drops their answers. To see them, run: sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0</source>
        <translation>Kameras mit einer Adresse aus einem anderen Netz sind über %1 nicht zu sehen: Der strenge Reverse-Path-Filter dieses Systems verwirft ihre Antworten. Um sie zu sehen: sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0</translation>
    </message>
    <message>
        <source>Cameras with an address of another network are not seen through %1: the loose reverse-path filter of this system drops their answers, as there is no default route. To see them, run: sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0</source>
        <translation>Kameras mit einer Adresse aus einem anderen Netz sind über %1 nicht zu sehen: Der lockere Reverse-Path-Filter dieses Systems verwirft ihre Antworten, weil es keine Standardroute gibt. Um sie zu sehen: sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0</translation>
    </message>
    <message>
        <source>No camera can be found through %1, as it has no IPv4 address. Perhaps no DHCP server answers it; give it a fixed or a link-local address.</source>
        <translation>Über %1 kann keine Kamera gefunden werden, weil der Adapter keine IPv4-Adresse hat. Vielleicht antwortet ihm kein DHCP-Server; geben Sie ihm eine feste oder eine Link-Local-Adresse.</translation>
    </message>
    <message>
        <source>%1 and %2 have addresses in the same network, so cameras may not be reachable through either. Give each adapter a network of its own.</source>
        <translation>%1 und %2 haben Adressen im selben Netz, daher sind Kameras vielleicht über keinen von beiden erreichbar. Geben Sie jedem Adapter ein eigenes Netz.</translation>
    </message>
    <message>
        <source>No camera could be searched for through %1: %3.</source>
        <translation>Über %1 konnte nicht nach Kameras gesucht werden: %3.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Failed to create transport layer object</source>
        <translation>Die Transportschicht konnte nicht erzeugt werden</translation>
    </message>
</context>
<context>
    <name>WaitBox</name>
    <message>
        <source>%1 of at most %2 s</source>
        <translation>%1 von höchstens %2 s</translation>
    </message>
</context>
</TS>
