<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>CustomerSignStepWidget</name>
    <message>
        <source>Command:</source>
        <translation>Befehl:</translation>
    </message>
    <message>
        <source>Binaries key:</source>
        <translation>Schlüssel für Binärdateien:</translation>
    </message>
    <message>
        <source>Packages key:</source>
        <translation>Schlüssel für Pakete:</translation>
    </message>
    <message>
        <source>Packages certificate:</source>
        <translation>Zertifikat für Pakete:</translation>
    </message>
    <message>
        <source>Packages client certificate:</source>
        <translation>Client-Zertifikat für Pakete:</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;If this option is disabled, packages debuginfo and debugsource will not be signed&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Ist diese Option ausgeschaltet, werden debuginfo- und debugsource-Pakete nicht signiert&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>Sign debug package</source>
        <translation>Debug-Pakete signieren</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Error: key and certificate can&apos;t be empty</source>
        <translation>Fehler: Schlüssel und Zertifikat müssen angegeben sein</translation>
    </message>
    <message>
        <source>Error: key and certificate must be inside workspace folder: %1</source>
        <translation>Fehler: Schlüssel und Zertifikat müssen im Arbeitsbereich liegen: %1</translation>
    </message>
    <message>
        <source>Error: keys and certificate can&apos;t be empty</source>
        <translation>Fehler: Beide Schlüssel und das Zertifikat müssen angegeben sein</translation>
    </message>
    <message>
        <source>Error: keys and certificate must be inside workspace folder: %1</source>
        <translation>Fehler: Beide Schlüssel und das Zertifikat müssen im Arbeitsbereich liegen: %1</translation>
    </message>
    <message>
        <source>No Build Engine found</source>
        <translation>Keine Build-Engine gefunden</translation>
    </message>
    <message>
        <source>Could not open %1 for writing: %2.</source>
        <translation>%1 konnte nicht zum Schreiben geöffnet werden: %2.</translation>
    </message>
    <message>
        <source>Could not write data to %1: %2.</source>
        <translation>In %1 konnte nicht geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>Error: the kit has no build engine</source>
        <translation>Fehler: Das Kit hat keine Build-Engine</translation>
    </message>
    <message>
        <source>Error: the kit has no build target</source>
        <translation>Fehler: Das Kit hat kein Build-Ziel</translation>
    </message>
    <message>
        <source>Error: cannot start &quot;%1&quot;: %2</source>
        <translation>Fehler: „%1“ kann nicht gestartet werden: %2</translation>
    </message>
    <message>
        <source>Company name cannot contain %1</source>
        <translation>Der Firmenname darf %1 nicht enthalten</translation>
    </message>
    <message>
        <source>Company name cannot have more than one line</source>
        <translation>Der Firmenname darf nicht mehrere Zeilen haben</translation>
    </message>
    <message>
        <source>Company name cannot begin or end with a blank</source>
        <translation>Der Firmenname darf nicht mit einem Leerzeichen beginnen oder enden</translation>
    </message>
    <message>
        <source>Company name cannot have more than %1 characters</source>
        <translation>Der Firmenname darf höchstens %1 Zeichen haben</translation>
    </message>
    <message>
        <source>Company name field cannot be empty</source>
        <translation>Der Firmenname muss angegeben sein</translation>
    </message>
    <message>
        <source>Key field cannot be empty</source>
        <translation>Der Schlüssel muss angegeben sein</translation>
    </message>
    <message>
        <source>Request field cannot be empty</source>
        <translation>Die Anforderung muss angegeben sein</translation>
    </message>
    <message>
        <source>Key and request cannot be the same file</source>
        <translation>Schlüssel und Anforderung dürfen nicht dieselbe Datei sein</translation>
    </message>
    <message>
        <source>The request would overwrite the private key in %1</source>
        <translation>Die Anforderung würde den privaten Schlüssel in %1 überschreiben</translation>
    </message>
    <message>
        <source>Error: package sign cancelled</source>
        <translation>Fehler: Das Signieren wurde abgebrochen</translation>
    </message>
    <message>
        <source>Error: package sign failed</source>
        <translation>Fehler: Das Signieren ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>The tool could not be started; see the General Messages</source>
        <translation>Das Werkzeug konnte nicht gestartet werden; siehe Allgemeine Meldungen</translation>
    </message>
    <message>
        <source>Cancelled: no pass phrase was given</source>
        <translation>Abgebrochen: Es wurde keine Passphrase angegeben</translation>
    </message>
    <message>
        <source>The tool gave no reason; its exit code was %1</source>
        <translation>Das Werkzeug nannte keinen Grund; sein Rückgabewert war %1</translation>
    </message>
    <message>
        <source>The path must be inside workspace folder:
%1</source>
        <translation>Der Pfad muss im Arbeitsbereich liegen:
%1</translation>
    </message>
    <message>
        <source>Stopped by the user</source>
        <translation>Vom Benutzer abgebrochen</translation>
    </message>
    <message>
        <source>Stopped: the IDE closes</source>
        <translation>Abgebrochen: Die IDE wird geschlossen</translation>
    </message>
    <message>
        <source>Stopped: the step or dialog that started the tool is gone</source>
        <translation>Abgebrochen: Den Schritt oder Dialog, der das Werkzeug gestartet hat, gibt es nicht mehr</translation>
    </message>
    <message>
        <source>The request would overwrite %1, which is no certificate signing request</source>
        <translation>Die Zertifikatsanforderung würde %1 überschreiben, das keine Zertifikatsanforderung ist</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>In dieser Datei ist kein privater Schlüssel</translation>
    </message>
    <message>
        <source>It belongs to another key. %1</source>
        <translation>Es gehört zu einem anderen Schlüssel. %1</translation>
    </message>
    <message>
        <source>The two pass phrases differ (Verify failure)</source>
        <translation>Die beiden Passphrasen sind verschieden (Verify failure)</translation>
    </message>
    <message>
        <source>A pass phrase has 4 to 1024 bytes (%1)</source>
        <translation>Eine Passphrase hat 4 bis 1024 Byte (%1)</translation>
    </message>
</context>
<context>
    <name>RpmsignExternalWidget</name>
    <message>
        <source>Global keys are used</source>
        <translation>Globale Schlüssel werden verwendet</translation>
    </message>
    <message>
        <source>Key:</source>
        <translation>Schlüssel:</translation>
    </message>
    <message>
        <source>Certificate:</source>
        <translation>Zertifikat:</translation>
    </message>
</context>
<context>
    <name>Sealkit::Constants</name>
    <message>
        <source>Select certificate (*.pem)</source>
        <translation>Zertifikat auswählen (*.pem)</translation>
    </message>
    <message>
        <source>Select key file (*.pem)</source>
        <translation>Schlüsseldatei auswählen (*.pem)</translation>
    </message>
    <message>
        <source>Select RPM package</source>
        <translation>RPM-Paket auswählen</translation>
    </message>
    <message>
        <source>RPM package (*.rpm)</source>
        <translation>RPM-Paket (*.rpm)</translation>
    </message>
    <message>
        <source>Select Privacy-Enhanced Mail container</source>
        <translation>PEM-Container auswählen</translation>
    </message>
    <message>
        <source>Privacy-Enhanced Mail container (*.pem)</source>
        <translation>PEM-Container (*.pem)</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CertificateSummary</name>
    <message>
        <source>Expired on %1: %2</source>
        <translation>Abgelaufen am %1: %2</translation>
    </message>
    <message>
        <source>Not valid before %1: %2</source>
        <translation>Nicht gültig vor dem %1: %2</translation>
    </message>
    <message>
        <source>Valid until %1: %2</source>
        <translation>Gültig bis %1: %2</translation>
    </message>
    <message>
        <source>There is no certificate in this file</source>
        <translation>In dieser Datei ist kein Zertifikat</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CustomerSignStep</name>
    <message>
        <source>RPM Sign (customer-sign)</source>
        <translation>RPM Sign (customer-sign)</translation>
    </message>
    <message>
        <source>Signing RPM package...</source>
        <translation>RPM-Paket wird signiert ...</translation>
    </message>
    <message>
        <source>Error: No previous &quot;%1&quot; step found</source>
        <translation>Fehler: Davor gibt es keinen Schritt „%1“</translation>
    </message>
    <message>
        <source>Error: no package for sign found</source>
        <translation>Fehler: Kein zu signierendes Paket gefunden</translation>
    </message>
    <message>
        <source>Package sign completed successfully.</source>
        <translation>Das Paket wurde erfolgreich signiert.</translation>
    </message>
    <message>
        <source>Package sign stopped by user</source>
        <translation>Das Signieren wurde vom Benutzer abgebrochen</translation>
    </message>
    <message>
        <source>Sign RPM package</source>
        <translation>RPM-Paket signieren</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::CustomerSignStepWidget</name>
    <message>
        <source>Select binaries key</source>
        <translation>Schlüssel für Binärdateien auswählen</translation>
    </message>
    <message>
        <source>Select packages key</source>
        <translation>Schlüssel für Pakete auswählen</translation>
    </message>
    <message>
        <source>Select packages certificate</source>
        <translation>Zertifikat für Pakete auswählen</translation>
    </message>
    <message>
        <source>Select packages client certificate</source>
        <translation>Client-Zertifikat für Pakete auswählen</translation>
    </message>
    <message>
        <source>The path must be inside shared folders:
%1
%2</source>
        <translation>Der Pfad muss in einem der gemeinsamen Ordner liegen:
%1
%2</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::PasswordDialogPrivate</name>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Password can&apos;t be empty</source>
        <translation>Das Passwort darf nicht leer sein</translation>
    </message>
    <message>
        <source>Password contains invalid newline characters</source>
        <translation>Das Passwort enthält unzulässige Zeilenumbrüche</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::ResultView</name>
    <message>
        <source>Signatures successfully verified</source>
        <translation>Die Signaturen sind gültig</translation>
    </message>
    <message>
        <source>Could not verify signatures</source>
        <translation>Die Signaturen konnten nicht bestätigt werden</translation>
    </message>
    <message>
        <source>Package can&apos;t be verified</source>
        <translation>Das Paket kann nicht geprüft werden</translation>
    </message>
    <message>
        <source>No signatures found in package</source>
        <translation>Das Paket enthält keine Signaturen</translation>
    </message>
    <message>
        <source>Package can&apos;t be dumped</source>
        <translation>Die Signaturen des Pakets können nicht ausgelesen werden</translation>
    </message>
    <message>
        <source>OpenSSL not found in target &apos;%1&apos;, please install it.</source>
        <translation>OpenSSL fehlt im Ziel „%1“, bitte installieren.</translation>
    </message>
    <message>
        <source>Available in: Tools - Options - Veyra OS - Manage Build Targets</source>
        <translation>Zu finden unter: Extras - Einstellungen - Veyra OS - Manage Build Targets</translation>
    </message>
    <message>
        <source>Target %1 cannot sign: it has neither rpmsign-external nor customer-sign</source>
        <translation>Das Ziel %1 kann nicht signieren: Es hat weder rpmsign-external noch customer-sign</translation>
    </message>
    <message>
        <source>Target %1 can only sign: without nxvcert-cli, signatures are neither shown nor removed</source>
        <translation>Das Ziel %1 kann nur signieren: Ohne nxvcert-cli werden Signaturen weder angezeigt noch entfernt</translation>
    </message>
    <message>
        <source>%1: signing failed at %2</source>
        <translation>%1: Signieren misslang am %2</translation>
    </message>
    <message>
        <source>%1: signed by %2 at %3</source>
        <translation>%1: signiert von %2 am %3</translation>
    </message>
    <message>
        <source>%1: removing failed at %2</source>
        <translation>%1: Entfernen misslang am %2</translation>
    </message>
    <message>
        <source>The existing key %1 was used (%2)</source>
        <translation>Der vorhandene Schlüssel %1 wurde verwendet (%2)</translation>
    </message>
    <message>
        <source>unknown kind</source>
        <translation>unbekannte Art</translation>
    </message>
    <message>
        <source>This key exists and is used as it is, whatever its algorithm</source>
        <translation>Diesen Schlüssel gibt es schon; er wird verwendet, wie er ist, gleich mit welchem Algorithmus</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>In dieser Datei ist kein privater Schlüssel</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternal</name>
    <message>
        <source>Filed to generate CSR</source>
        <translation>Die Zertifikatsanforderung (CSR) konnte nicht erzeugt werden</translation>
    </message>
    <message>
        <source>The request is empty; is the disk full?</source>
        <translation>Die Anforderung ist leer; ist die Festplatte voll?</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternalStep</name>
    <message>
        <source>RPM Sign (rpmsign-external)</source>
        <translation>RPM Sign (rpmsign-external)</translation>
    </message>
    <message>
        <source>Signing RPM package...</source>
        <translation>RPM-Paket wird signiert ...</translation>
    </message>
    <message>
        <source>Error: No previous &quot;%1&quot; step found</source>
        <translation>Fehler: Davor gibt es keinen Schritt „%1“</translation>
    </message>
    <message>
        <source>Error: no package for sign found</source>
        <translation>Fehler: Kein zu signierendes Paket gefunden</translation>
    </message>
    <message>
        <source>Package sign completed successfully.</source>
        <translation>Das Paket wurde erfolgreich signiert.</translation>
    </message>
    <message>
        <source>Failed to verify signature dump</source>
        <translation>Die Signaturen konnten nicht ausgelesen werden</translation>
    </message>
    <message>
        <source>Note: Packages %1 signed with developer key, use is possible only for development purposes. Read more: %2</source>
        <translation>Hinweis: Paket %1 ist mit einem Entwicklerschlüssel signiert und nur für die Entwicklung verwendbar. Mehr dazu: %2</translation>
    </message>
    <message>
        <source>Note: Packages %1 is not signed. Deployment to the device is not possible. Read more: %2</source>
        <translation>Hinweis: Paket %1 ist nicht signiert und kann nicht auf das Gerät gebracht werden. Mehr dazu: %2</translation>
    </message>
    <message>
        <source>Package sign stopped by user</source>
        <translation>Das Signieren wurde vom Benutzer abgebrochen</translation>
    </message>
    <message>
        <source>Sign RPM package</source>
        <translation>RPM-Paket signieren</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::RpmsignExternalWidget</name>
    <message>
        <source>User private key for signing the package</source>
        <translation>Privater Schlüssel des Benutzers zum Signieren des Pakets</translation>
    </message>
    <message>
        <source>Certificate to be used in signature</source>
        <translation>Zertifikat für die Signatur</translation>
    </message>
    <message>
        <source>Default key</source>
        <translation>Standardschlüssel</translation>
    </message>
    <message>
        <source>Custom key</source>
        <translation>Eigener Schlüssel</translation>
    </message>
    <message>
        <source>Custom keys are used</source>
        <translation>Eigene Schlüssel werden verwendet</translation>
    </message>
    <message>
        <source>Global keys are used</source>
        <translation>Globale Schlüssel werden verwendet</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SealkitPlugin</name>
    <message>
        <source>&amp;Sign Packages</source>
        <translation>Pakete &amp;signieren</translation>
    </message>
    <message>
        <source>[E] Failed to copy regular keys:	%1</source>
        <translation>[E] Die regulären Schlüssel konnten nicht kopiert werden:	%1</translation>
    </message>
    <message>
        <source>[W] Please make sure that the &apos;%1&apos; is writable and restart the ide</source>
        <translation>[W] Bitte sicherstellen, dass „%1“ beschreibbar ist, und die IDE neu starten</translation>
    </message>
    <message>
        <source>[W] OR</source>
        <translation>[W] ODER</translation>
    </message>
    <message>
        <source>[W] Specify the path to the default signature keys in the settings</source>
        <translation>[W] Den Pfad zu den Standardschlüsseln für Signaturen in den Einstellungen angeben</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignDialog</name>
    <message>
        <source>Select root certificate</source>
        <translation>Wurzelzertifikat auswählen</translation>
    </message>
    <message>
        <source>Specify path to save key file or select existing key file</source>
        <translation>Pfad für eine neue Schlüsseldatei angeben oder vorhandene auswählen</translation>
    </message>
    <message>
        <source>Specify path to save Certificate Signing Request file</source>
        <translation>Pfad für die Zertifikatsanforderung (CSR) angeben</translation>
    </message>
    <message>
        <source>Path to PEM-encoded bundle with root certificates. If not set, default value will be used.</source>
        <translation>Pfad zu einer PEM-Datei mit Wurzelzertifikaten. Ohne Angabe wird der Standardwert verwendet.</translation>
    </message>
    <message>
        <source>Updating targets...</source>
        <translation>Ziele werden aktualisiert ...</translation>
    </message>
    <message>
        <source>RSA (2048)</source>
        <translation>RSA (2048)</translation>
    </message>
    <message>
        <source>GOST R 34.10-2012 (256)</source>
        <translation>GOST R 34.10-2012 (256)</translation>
    </message>
    <message>
        <source>File does not exist</source>
        <translation>Die Datei existiert nicht</translation>
    </message>
    <message>
        <source>Failed to generate request: %1</source>
        <translation>Die Anforderung konnte nicht erzeugt werden: %1</translation>
    </message>
    <message>
        <source>There is no build engine: open or repair the SDK</source>
        <translation>Es gibt keine Build-Engine: Öffnen oder reparieren Sie das SDK</translation>
    </message>
    <message>
        <source>The build engine did not start; see the General Messages</source>
        <translation>Die Build-Engine ist nicht gestartet; siehe Allgemeine Meldungen</translation>
    </message>
    <message>
        <source>The build engine has no targets: install one</source>
        <translation>Die Build-Engine hat keine Ziele: Installieren Sie eines</translation>
    </message>
    <message>
        <source>No client signature was added: it needs a client key and its certificate</source>
        <translation>Es wurde keine Client-Signatur hinzugefügt: Sie braucht einen Client-Schlüssel und sein Zertifikat</translation>
    </message>
    <message>
        <source>No browser opened %1</source>
        <translation>Kein Browser öffnete %1</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignOptionsPage</name>
    <message>
        <source>Sign packages</source>
        <translation>Pakete signieren</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignOptionsWidget</name>
    <message>
        <source>The path to the key file that will be used by default to sign rpm packages</source>
        <translation>Pfad der Schlüsseldatei, mit der RPM-Pakete standardmäßig signiert werden</translation>
    </message>
    <message>
        <source>The path to the certificate file that will be used by default to sign rpm packages</source>
        <translation>Pfad der Zertifikatsdatei, mit der RPM-Pakete standardmäßig signiert werden</translation>
    </message>
    <message>
        <source>Regular key</source>
        <translation>Regulärer Schlüssel</translation>
    </message>
    <message>
        <source>Custom key</source>
        <translation>Eigener Schlüssel</translation>
    </message>
    <message>
        <source>Regular certificate</source>
        <translation>Reguläres Zertifikat</translation>
    </message>
    <message>
        <source>Custom certificate</source>
        <translation>Eigenes Zertifikat</translation>
    </message>
    <message>
        <source>No file is chosen</source>
        <translation>Es ist keine Datei gewählt</translation>
    </message>
    <message>
        <source>File does not exist</source>
        <translation>Die Datei existiert nicht</translation>
    </message>
    <message>
        <source>There is no private key in this file</source>
        <translation>In dieser Datei ist kein privater Schlüssel</translation>
    </message>
</context>
<context>
    <name>Sealkit::Internal::SignTool</name>
    <message>
        <source>Second of two times, for the new key %1</source>
        <translation>Zum zweiten von zwei Malen, für den neuen Schlüssel %1</translation>
    </message>
    <message>
        <source>First of two times, for the new key %1</source>
        <translation>Zum ersten von zwei Malen, für den neuen Schlüssel %1</translation>
    </message>
</context>
<context>
    <name>SignDialog</name>
    <message>
        <source>Sign Packages</source>
        <translation>Pakete signieren</translation>
    </message>
    <message>
        <source>NOTE: Move keys to workspace folder, if you change it</source>
        <translation>HINWEIS: Wer den Ordner des Arbeitsbereichs wechselt, muss die Schlüssel dorthin mitnehmen</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;For the &lt;span style=&quot; font-weight:700;&quot;&gt;regular&lt;/span&gt; profile, the key and certificate can be found in the &lt;a href=&quot;%folder_link%&quot;&gt;&lt;span style=&quot; text-decoration: underline; color:#2980b9;&quot;&gt;folder&lt;/span&gt;&lt;/a&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Für das Profil &lt;span style=&quot; font-weight:700;&quot;&gt;regular&lt;/span&gt; liegen Schlüssel und Zertifikat in diesem &lt;a href=&quot;%folder_link%&quot;&gt;&lt;span style=&quot; text-decoration: underline; color:#2980b9;&quot;&gt;Ordner&lt;/span&gt;&lt;/a&gt;&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Developer signature dump&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Inhalt der Entwicklersignatur&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Client signature dump&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</source>
        <translation>&lt;html&gt;&lt;head/&gt;&lt;body&gt;&lt;p&gt;Inhalt der Client-Signatur&lt;/p&gt;&lt;/body&gt;&lt;/html&gt;</translation>
    </message>
    <message>
        <source>&amp;Target</source>
        <translation>&amp;Ziel</translation>
    </message>
    <message>
        <source>RPM &amp;package</source>
        <translation>RPM-&amp;Paket</translation>
    </message>
    <message>
        <source>&amp;Sign</source>
        <translation>&amp;Signieren</translation>
    </message>
    <message>
        <source>&amp;Binary key</source>
        <translation>Schlüssel für &amp;Binärdateien</translation>
    </message>
    <message>
        <source>&amp;Developer key</source>
        <translation>Ent&amp;wicklerschlüssel</translation>
    </message>
    <message>
        <source>D&amp;eveloper certificate</source>
        <translation>Entwicklerzertifi&amp;kat</translation>
    </message>
    <message>
        <source>Client &amp;key</source>
        <translation>&amp;Client-Schlüssel</translation>
    </message>
    <message>
        <source>Client certi&amp;ficate</source>
        <translation>Client-Zertifika&amp;t</translation>
    </message>
    <message>
        <source>&amp;Add signature</source>
        <translation>Signatur hinzu&amp;fügen</translation>
    </message>
    <message>
        <source>&amp;Remove signature</source>
        <translation>Signatur e&amp;ntfernen</translation>
    </message>
    <message>
        <source>Fill in the regular key and certificate as the developer&apos;s</source>
        <translation>Den regulären Schlüssel und sein Zertifikat als die des Entwicklers eintragen</translation>
    </message>
    <message>
        <source>&amp;Use regular key</source>
        <translation>Re&amp;gulären Schlüssel verwenden</translation>
    </message>
    <message>
        <source>&amp;Verify</source>
        <translation>P&amp;rüfen</translation>
    </message>
    <message>
        <source>CA certi&amp;ficate</source>
        <translation>&amp;CA-Zertifikat</translation>
    </message>
    <message>
        <source>Verif&amp;y signature</source>
        <translation>Signatur prü&amp;fen</translation>
    </message>
    <message>
        <source>&amp;Dump signature</source>
        <translation>Signatur &amp;anzeigen</translation>
    </message>
    <message>
        <source>Certificate generat&amp;ion</source>
        <translation>Zertifikat &amp;erzeugen</translation>
    </message>
    <message>
        <source>&amp;Key</source>
        <translation>Sch&amp;lüssel</translation>
    </message>
    <message>
        <source>A&amp;lgorithm</source>
        <translation>Algorith&amp;mus</translation>
    </message>
    <message>
        <source>&amp;Encrypt</source>
        <translation>&amp;Verschlüsseln</translation>
    </message>
    <message>
        <source>&amp;Request</source>
        <translation>&amp;Anforderung</translation>
    </message>
    <message>
        <source>Company &amp;name</source>
        <translation>Firme&amp;nname</translation>
    </message>
    <message>
        <source>&amp;Generate</source>
        <translation>Erzeu&amp;gen</translation>
    </message>
</context>
<context>
    <name>SignOptionsWidget</name>
    <message>
        <source>Enable sign step by default</source>
        <translation>Signierschritt standardmäßig einschalten</translation>
    </message>
    <message>
        <source>Default key and certificate</source>
        <translation>Standardschlüssel und -zertifikat</translation>
    </message>
    <message>
        <source>&amp;Key:</source>
        <translation>&amp;Schlüssel:</translation>
    </message>
    <message>
        <source>Ce&amp;rtificate:</source>
        <translation>&amp;Zertifikat:</translation>
    </message>
</context>
</TS>
