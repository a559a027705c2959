<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Alert</name>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>BackupPhotos</name>
    <message>
        <source>Undated</source>
        <translation>Ohne Datum</translation>
    </message>
</context>
<context>
    <name>Core</name>
    <message>
        <source>no such folder: %1</source>
        <translation>Diesen Ordner gibt es nicht: %1</translation>
    </message>
    <message>
        <source>not a folder: %1</source>
        <translation>Das ist kein Ordner: %1</translation>
    </message>
    <message>
        <source>no permission to read the folder: %1</source>
        <translation>Für diesen Ordner fehlt die Leseberechtigung: %1</translation>
    </message>
    <message>
        <source>Unnamed Device</source>
        <translation>Unbenanntes Gerät</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; does not exist.</source>
        <translation>Den Ordner „%1“ gibt es nicht.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a folder.</source>
        <translation>„%1“ ist kein Ordner.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; lies in the backup &quot;%2&quot;, and nothing is ever written into a backup.</source>
        <translation>„%1“ liegt in der Sicherung „%2“, und in eine Sicherung wird niemals etwas geschrieben.</translation>
    </message>
    <message>
        <source>Nothing can be written into the folder &quot;%1&quot;.</source>
        <translation>In den Ordner „%1“ kann nichts geschrieben werden.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not the name of a file.</source>
        <translation>„%1“ ist kein Dateiname.</translation>
    </message>
    <message>
        <source>the backup is encrypted</source>
        <translation>die Sicherung ist verschlüsselt</translation>
    </message>
    <message>
        <source>nothing is ever written into a backup</source>
        <translation>in eine Sicherung wird niemals etwas geschrieben</translation>
    </message>
    <message>
        <source>a file of this name exists</source>
        <translation>eine Datei dieses Namens ist schon vorhanden</translation>
    </message>
    <message>
        <source>this is not the name of a file</source>
        <translation>das ist kein Dateiname</translation>
    </message>
    <message>
        <source>the file is missing</source>
        <translation>die Datei fehlt</translation>
    </message>
    <message>
        <source>there is no permission to read the file</source>
        <translation>die Leseberechtigung für die Datei fehlt</translation>
    </message>
    <message>
        <source>the file cannot be read</source>
        <translation>die Datei kann nicht gelesen werden</translation>
    </message>
</context>
<context>
    <name>Details</name>
    <message>
        <source>%1° %2</source>
        <translation>%1° %2</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1 – %2</source>
        <translation>%1 – %2</translation>
    </message>
    <message>
        <source>%1 (%2 bytes)</source>
        <translation>%1 (%2 Byte)</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Edited</source>
        <translation>Bearbeitet</translation>
    </message>
    <message>
        <source>Cloud library</source>
        <translation>Cloud-Mediathek</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Sonstiges</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>1 photo</source>
        <translation>1 Foto</translation>
    </message>
    <message>
        <source>%1 photos</source>
        <translation>%1 Fotos</translation>
    </message>
    <message>
        <source>1 film</source>
        <translation>1 Film</translation>
    </message>
    <message>
        <source>%1 films</source>
        <translation>%1 Filme</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 und %2</translation>
    </message>
    <message>
        <source>1/%1 s</source>
        <translation>1/%1 s</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>f/%1</source>
        <translation>f/%1</translation>
    </message>
    <message>
        <source>ISO %1</source>
        <translation>ISO %1</translation>
    </message>
    <message>
        <source>N</source>
        <translation>N</translation>
    </message>
    <message>
        <source>S</source>
        <translation>S</translation>
    </message>
    <message>
        <source>E</source>
        <translation>O</translation>
    </message>
    <message>
        <source>W</source>
        <translation>W</translation>
    </message>
</context>
<context>
    <name>ExportText</name>
    <message>
        <source>1 photo</source>
        <translation>1 Foto</translation>
    </message>
    <message numerus="yes">
        <source>%n photos</source>
        <translation>
            <numerusform>%n Foto</numerusform>
            <numerusform>%n Fotos</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 exported to %2</source>
        <translation>%1 nach „%2“ exportiert</translation>
    </message>
    <message numerus="yes">
        <source>%n there already</source>
        <translation>
            <numerusform>%n bereits vorhanden</numerusform>
            <numerusform>%n bereits vorhanden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n of another length than the backup states</source>
        <translation>
            <numerusform>%n mit anderer Länge, als die Sicherung angibt</numerusform>
            <numerusform>%n mit anderer Länge, als die Sicherung angibt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n fehlgeschlagen</numerusform>
            <numerusform>%n fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n not begun</source>
        <translation>
            <numerusform>%n nicht begonnen</numerusform>
            <numerusform>%n nicht begonnen</numerusform>
        </translation>
    </message>
    <message>
        <source>Encrypted, so nothing was exported from</source>
        <translation>Wegen Verschlüsselung nicht exportiert</translation>
    </message>
    <message>
        <source>Damaged, so photos may be missing</source>
        <translation>Beschädigt, möglicherweise fehlen Fotos</translation>
    </message>
    <message>
        <source>The backup is encrypted: nothing was exported from it</source>
        <translation>Die Sicherung ist verschlüsselt: aus ihr wurde nichts exportiert</translation>
    </message>
    <message>
        <source>The backup is damaged: photos may be missing</source>
        <translation>Die Sicherung ist beschädigt: möglicherweise fehlen Fotos</translation>
    </message>
    <message>
        <source>“%1” Has Too Little Room</source>
        <translation>Auf „%1“ ist zu wenig Platz</translation>
    </message>
    <message>
        <source>The photos need %1, and %2 are free.</source>
        <translation>Die Fotos benötigen %1, frei sind %2.</translation>
    </message>
    <message>
        <source>Nothing More Can Be Written to “%1”</source>
        <translation>In „%1“ kann nichts mehr geschrieben werden</translation>
    </message>
    <message>
        <source>%1 of %2 arrived; the backup is unchanged. Retry goes on with the others.</source>
        <translation>%1 von %2 angekommen; die Sicherung ist unverändert. „Wiederholen“ macht mit den übrigen weiter.</translation>
    </message>
    <message>
        <source>The Photos May Not Be Safe Yet</source>
        <translation>Die Fotos sind möglicherweise noch nicht sicher</translation>
    </message>
    <message>
        <source>All photos were exported, but their disk does not confirm that it has them (%1). Look at them before you give the backup away.</source>
        <translation>Alle Fotos wurden exportiert, aber der Datenträger bestätigt nicht, dass er sie hat (%1). Sehen Sie sich die Fotos an, bevor Sie die Sicherung weggeben.</translation>
    </message>
    <message>
        <source>The Report Could Not Be Saved</source>
        <translation>Der Bericht konnte nicht gespeichert werden</translation>
    </message>
    <message>
        <source>Report saved to %1</source>
        <translation>Bericht gespeichert in %1</translation>
    </message>
    <message>
        <source>Report saved to %1, but files that it names could not be read</source>
        <translation>Bericht gespeichert in %1, aber einige der darin genannten Dateien konnten nicht gelesen werden</translation>
    </message>
    <message>
        <source>The backup is unchanged.</source>
        <translation>Die Sicherung ist unverändert.</translation>
    </message>
    <message numerus="yes">
        <source>%1 of %n Photos Could Not Be Copied</source>
        <translation>
            <numerusform>%1 von %n Foto konnte nicht kopiert werden</numerusform>
            <numerusform>%1 von %n Fotos konnten nicht kopiert werden</numerusform>
        </translation>
    </message>
    <message>
        <source>1 film</source>
        <translation>1 Film</translation>
    </message>
    <message numerus="yes">
        <source>%n films</source>
        <translation>
            <numerusform>%n Film</numerusform>
            <numerusform>%n Filme</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <comment>photos and films</comment>
        <translation>%1 und %2</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Backups</source>
        <translation>Sicherungen</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stoppen</translation>
    </message>
    <message>
        <source>Stop Searching</source>
        <translation>Suche stoppen</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>Fotos</translation>
    </message>
    <message>
        <source>Choose a folder that holds backups, or drop one on this window.</source>
        <translation>Wählen Sie einen Ordner mit Sicherungen, oder legen Sie einen auf diesem Fenster ab.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Ordner wählen...</translation>
    </message>
    <message>
        <source>No Photos</source>
        <translation>Keine Fotos</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Export...</source>
        <translation>Exportieren...</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open Rece&amp;nt</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Export O&amp;ptions</source>
        <translation>Export&amp;optionen</translation>
    </message>
    <message>
        <source>&amp;Folders of Export Everything</source>
        <translation>&amp;Ordner beim Export aller Sicherungen</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Films and Other Pictures</source>
        <translation>&amp;Filme und andere Bilder</translation>
    </message>
    <message>
        <source>Show the films and pictures of old backups beside their photos</source>
        <translation>Neben den Fotos alter Sicherungen auch Filme und Bilder anzeigen</translation>
    </message>
    <message>
        <source>&amp;Open Folder...</source>
        <translation>Ordner ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>Show the backups in a folder, or anywhere below it</source>
        <translation>Die Sicherungen in einem Ordner und allen seinen Unterordnern anzeigen</translation>
    </message>
    <message>
        <source>&amp;Close Folder</source>
        <translation>Ordner &amp;schließen</translation>
    </message>
    <message>
        <source>Take the folder of this backup out of the list</source>
        <translation>Den Ordner dieser Sicherung aus der Liste nehmen</translation>
    </message>
    <message>
        <source>&amp;Export Selected...</source>
        <translation>Ausge&amp;wählte exportieren...</translation>
    </message>
    <message>
        <source>Copy the selected photos into a folder</source>
        <translation>Die ausgewählten Fotos in einen Ordner kopieren</translation>
    </message>
    <message>
        <source>Export &amp;All...</source>
        <translation>&amp;Alle exportieren...</translation>
    </message>
    <message>
        <source>Copy every photo of this backup into a folder</source>
        <translation>Alle Fotos dieser Sicherung in einen Ordner kopieren</translation>
    </message>
    <message>
        <source>Export E&amp;verything...</source>
        <translation>Alle Sicherun&amp;gen exportieren...</translation>
    </message>
    <message>
        <source>Copy every photo of all backups into a folder</source>
        <translation>Alle Fotos aller Sicherungen in einen Ordner kopieren</translation>
    </message>
    <message>
        <source>&amp;Reveal In Finder</source>
        <translation>Im Datei&amp;manager anzeigen</translation>
    </message>
    <message>
        <source>Show the folder of this backup in the file manager</source>
        <translation>Den Ordner dieser Sicherung im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Close &amp;Window</source>
        <translation>Fenster s&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Skip Photos That Are Already There</source>
        <translation>Bereits vorhandene Fotos ü&amp;berspringen</translation>
    </message>
    <message>
        <source>Export no photo whose bytes stand under its name in the folder</source>
        <translation>Fotos nicht exportieren, die unter ihrem Namen und mit demselben Inhalt schon im Ordner liegen</translation>
    </message>
    <message>
        <source>&amp;Keep Dates</source>
        <translation>&amp;Datum beibehalten</translation>
    </message>
    <message>
        <source>Give each file the modification date that the photo had on the device</source>
        <translation>Jeder Datei das Änderungsdatum geben, das das Foto auf dem Gerät hatte</translation>
    </message>
    <message>
        <source>&amp;None</source>
        <translation>&amp;Keine</translation>
    </message>
    <message>
        <source>All photos stand in the one folder</source>
        <translation>Alle Fotos liegen in dem einen Ordner</translation>
    </message>
    <message>
        <source>One for Each &amp;Device</source>
        <translation>Einer je &amp;Gerät</translation>
    </message>
    <message>
        <source>A folder for each device, under its name</source>
        <translation>Für jedes Gerät ein Ordner mit dessen Namen</translation>
    </message>
    <message>
        <source>One for Each &amp;Month</source>
        <translation>Einer je &amp;Monat</translation>
    </message>
    <message>
        <source>A folder for each month of the photos&apos; dates</source>
        <translation>Für jeden Monat der Aufnahmen ein Ordner</translation>
    </message>
    <message>
        <source>As &amp;on the Device</source>
        <translation>&amp;Wie auf dem Gerät</translation>
    </message>
    <message>
        <source>The folders in which the photos stood on the device</source>
        <translation>Die Ordner, in denen die Fotos auf dem Gerät lagen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the selected photos to the clipboard</source>
        <translation>Die ausgewählten Fotos in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <source>&amp;Deselect</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl &amp;umkehren</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>&amp;Reset Zoom</source>
        <translation>Größe &amp;zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Preview</source>
        <translation>&amp;Vorschau</translation>
    </message>
    <message>
        <source>Show the current photo as large as the window</source>
        <translation>Das aktuelle Foto in Fenstergröße anzeigen</translation>
    </message>
    <message>
        <source>&amp;About Snaplift</source>
        <translation>Ü&amp;ber Snaplift</translation>
    </message>
    <message>
        <source>Backups and Their Photos</source>
        <translation>Sicherungen und ihre Fotos</translation>
    </message>
    <message>
        <source>Smaller Pictures</source>
        <translation>Kleinere Bilder</translation>
    </message>
    <message>
        <source>Larger Pictures</source>
        <translation>Größere Bilder</translation>
    </message>
    <message>
        <source>Show All Photos</source>
        <translation>Alle Fotos zeigen</translation>
    </message>
    <message>
        <source>&amp;Sort By</source>
        <translation>&amp;Sortieren nach</translation>
    </message>
    <message>
        <source>Order of &amp;Backup</source>
        <translation>&amp;Reihenfolge der Sicherung</translation>
    </message>
    <message>
        <source>The order in which the backup lists them</source>
        <translation>Die Reihenfolge, in der die Sicherung sie aufführt</translation>
    </message>
    <message>
        <source>&amp;Date</source>
        <translation>&amp;Datum</translation>
    </message>
    <message>
        <source>By the date of each photo; those without one come last</source>
        <translation>Nach dem Datum jedes Fotos; Fotos ohne Datum stehen am Ende</translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>&amp;Name</translation>
    </message>
    <message>
        <source>By name, and by the number in it</source>
        <translation>Nach dem Namen und der Zahl darin</translation>
    </message>
    <message>
        <source>&amp;Size</source>
        <translation>&amp;Größe</translation>
    </message>
    <message>
        <source>By the size of each file; those of unknown size come last</source>
        <translation>Nach der Größe jeder Datei; solche unbekannter Größe stehen am Ende</translation>
    </message>
    <message>
        <source>&amp;Ascending</source>
        <translation>&amp;Aufsteigend</translation>
    </message>
    <message>
        <source>D&amp;escending</source>
        <translation>A&amp;bsteigend</translation>
    </message>
    <message>
        <source>&amp;Group By Month</source>
        <translation>Nach &amp;Monat gruppieren</translation>
    </message>
    <message>
        <source>Show the photos of each month below its name</source>
        <translation>Die Fotos jedes Monats unter seinem Namen zeigen</translation>
    </message>
    <message>
        <source>&amp;Dates</source>
        <translation>&amp;Datum</translation>
    </message>
    <message>
        <source>Show the date of each photo below its name</source>
        <translation>Das Datum jedes Fotos unter seinem Namen zeigen</translation>
    </message>
    <message>
        <source>&amp;Camera Originals Only</source>
        <translation>Nur &amp;Originale der Kamera</translation>
    </message>
    <message>
        <source>Hide what was edited, made from photos, or in a cloud library</source>
        <translation>Ausblenden, was bearbeitet oder aus Fotos gemacht wurde oder aus einer Cloud-Mediathek kommt</translation>
    </message>
    <message>
        <source>&amp;Find...</source>
        <translation>&amp;Suchen...</translation>
    </message>
    <message>
        <source>Show the photos whose name, folder or date is typed</source>
        <translation>Die Fotos zeigen, deren Name, Ordner oder Datum eingegeben wird</translation>
    </message>
    <message>
        <source>Get &amp;Info</source>
        <translation>&amp;Informationen</translation>
    </message>
    <message>
        <source>Show what is known of the selected photos beside them</source>
        <translation>Neben den Fotos anzeigen, was über die ausgewählten bekannt ist</translation>
    </message>
</context>
<context>
    <name>StatusText</name>
    <message>
        <source>No Photos</source>
        <translation>Keine Fotos</translation>
    </message>
    <message numerus="yes">
        <source>%1 of %n Photos Selected</source>
        <translation>
            <numerusform>%1 von %n Foto ausgewählt</numerusform>
            <numerusform>%1 von %n Fotos ausgewählt</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Photo</source>
        <translation>1 Foto</translation>
    </message>
    <message numerus="yes">
        <source>%n Photos</source>
        <translation>
            <numerusform>%n Foto</numerusform>
            <numerusform>%n Fotos</numerusform>
        </translation>
    </message>
    <message>
        <source>1 film</source>
        <translation>1 Film</translation>
    </message>
    <message numerus="yes">
        <source>%n films</source>
        <translation>
            <numerusform>%n Film</numerusform>
            <numerusform>%n Filme</numerusform>
        </translation>
    </message>
    <message>
        <source>1 other picture</source>
        <translation>1 anderes Bild</translation>
    </message>
    <message numerus="yes">
        <source>%n other pictures</source>
        <translation>
            <numerusform>%n anderes Bild</numerusform>
            <numerusform>%n andere Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2 are not shown</source>
        <translation>%1 und %2 werden nicht angezeigt</translation>
    </message>
    <message>
        <source>%1 is not shown</source>
        <translation>%1 wird nicht angezeigt</translation>
    </message>
    <message numerus="yes">
        <source>%1 are not shown</source>
        <translation>
            <numerusform>%1 wird nicht angezeigt</numerusform>
            <numerusform>%1 werden nicht angezeigt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Exporting: %n Photos Remaining</source>
        <translation>
            <numerusform>Export läuft: noch %n Foto</numerusform>
            <numerusform>Export läuft: noch %n Fotos</numerusform>
        </translation>
    </message>
    <message>
        <source>System version %1</source>
        <translation>Systemversion %1</translation>
    </message>
    <message>
        <source>Not finished by the device&apos;s backup</source>
        <translation>Vom Gerät nicht zu Ende gesichert</translation>
    </message>
    <message>
        <source>Showing %L1 of %L2</source>
        <translation>%L1 von %L2 werden gezeigt</translation>
    </message>
</context>
<context>
    <name>Thumbnail</name>
    <message>
        <source>Missing</source>
        <translation>Fehlt</translation>
    </message>
    <message>
        <source>The backup does not have this photo.</source>
        <translation>Die Sicherung enthält dieses Foto nicht.</translation>
    </message>
    <message>
        <source>Unreadable</source>
        <translation>Unlesbar</translation>
    </message>
    <message>
        <source>This photo is there, but it cannot be read.</source>
        <translation>Dieses Foto ist vorhanden, kann aber nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>Beschädigt</translation>
    </message>
    <message>
        <source>This photo is damaged, too large or of an unknown format.</source>
        <translation>Dieses Foto ist beschädigt, zu groß oder von unbekanntem Format.</translation>
    </message>
    <message>
        <source>Incomplete</source>
        <translation>Unvollständig</translation>
    </message>
    <message>
        <source>A part of this photo is missing.</source>
        <translation>Ein Teil dieses Fotos fehlt.</translation>
    </message>
</context>
<context>
    <name>TransferRate</name>
    <message>
        <source>less than a minute left</source>
        <translation>noch weniger als eine Minute</translation>
    </message>
    <message>
        <source>more than 99 hours left</source>
        <translation>noch mehr als 99 Stunden</translation>
    </message>
    <message numerus="yes">
        <source>about %n hours left</source>
        <translation>
            <numerusform>noch etwa %n Stunde</numerusform>
            <numerusform>noch etwa %n Stunden</numerusform>
        </translation>
    </message>
    <message>
        <source>about 1 minute left</source>
        <translation>noch etwa 1 Minute</translation>
    </message>
    <message numerus="yes">
        <source>about %n minutes left</source>
        <translation>
            <numerusform>noch etwa %n Minute</numerusform>
            <numerusform>noch etwa %n Minuten</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>snaplift::ExportNotice</name>
    <message>
        <source>More than half of them were there already, with the same bytes</source>
        <translation>Mehr als die Hälfte davon war mit demselben Inhalt schon vorhanden</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Details...</translation>
    </message>
    <message>
        <source>Retry Failed</source>
        <translation>Fehlgeschlagene wiederholen</translation>
    </message>
    <message>
        <source>Skip Them From Now On</source>
        <translation>Künftig überspringen</translation>
    </message>
    <message>
        <source>Save Report...</source>
        <translation>Bericht speichern...</translation>
    </message>
    <message>
        <source>Photos That Were Not Exported</source>
        <translation>Nicht exportierte Fotos</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>Foto</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Bericht speichern</translation>
    </message>
    <message>
        <source>Comma-Separated Values (*.csv)</source>
        <translation>Kommagetrennte Werte (*.csv)</translation>
    </message>
    <message>
        <source>Snaplift Report.csv</source>
        <translation>Snaplift-Bericht.csv</translation>
    </message>
    <message>
        <source>Saving the report...</source>
        <translation>Der Bericht wird gespeichert...</translation>
    </message>
</context>
<context>
    <name>snaplift::ExportProgressBar</name>
    <message>
        <source>Export Progress</source>
        <translation>Fortschritt des Exports</translation>
    </message>
    <message>
        <source>Stop Exporting</source>
        <translation>Export stoppen</translation>
    </message>
    <message>
        <source>Finish the photos in hand and leave the others in the backup</source>
        <translation>Begonnene Fotos fertigstellen und die übrigen in der Sicherung lassen</translation>
    </message>
    <message>
        <source>Stopping...</source>
        <translation>Wird gestoppt...</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stoppen</translation>
    </message>
    <message>
        <source>Loading backups, %1 of %2</source>
        <translation>Sicherungen werden geladen, %1 von %2</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>snaplift::FactTable</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>snaplift::FindBar</name>
    <message>
        <source>Find Photos</source>
        <translation>Fotos suchen</translation>
    </message>
    <message>
        <source>Name, folder or date (June 2011)</source>
        <translation>Name, Ordner oder Datum (Juni 2011)</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Show all photos again (Esc)</source>
        <translation>Wieder alle Fotos zeigen (Esc)</translation>
    </message>
</context>
<context>
    <name>snaplift::ImageBrowserView</name>
    <message>
        <source>Film</source>
        <translation>Film</translation>
    </message>
    <message>
        <source>%1 × %2 pixels</source>
        <translation>%1 × %2 Pixel</translation>
    </message>
    <message>
        <source>Live Photo</source>
        <translation>Live-Foto</translation>
    </message>
    <message>
        <source>1 Photo</source>
        <translation>1 Foto</translation>
    </message>
    <message numerus="yes">
        <source>%Ln Photos</source>
        <translation>
            <numerusform>%Ln Foto</numerusform>
            <numerusform>%Ln Fotos</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>snaplift::NoticeBar</name>
    <message>
        <source>Close this notice (Esc)</source>
        <translation>Diese Meldung schließen (Esc)</translation>
    </message>
    <message>
        <source>Close Notice</source>
        <translation>Meldung schließen</translation>
    </message>
</context>
<context>
    <name>snaplift::ORBSourceList</name>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen...</translation>
    </message>
</context>
<context>
    <name>snaplift::PhotoDetails</name>
    <message>
        <source>Copy Position</source>
        <translation>Position kopieren</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Informationen</translation>
    </message>
    <message>
        <source>Close Info</source>
        <translation>Informationen schließen</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>Fotos</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Not known</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Dates</source>
        <translation>Datumsangaben</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>Kinds</source>
        <translation>Arten</translation>
    </message>
    <message>
        <source>Date (record)</source>
        <translation>Datum (Verzeichnis)</translation>
    </message>
    <message>
        <source>Date (photo)</source>
        <translation>Datum (Foto)</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Belichtung</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Missing</source>
        <translation>Fehlt</translation>
    </message>
    <message>
        <source>Cannot be read</source>
        <translation>Nicht lesbar</translation>
    </message>
    <message>
        <source>Of another length than the backup states</source>
        <translation>Andere Länge, als die Sicherung angibt</translation>
    </message>
    <message>
        <source>Whole</source>
        <translation>Vollständig</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Film, %1</source>
        <translation>Film, %1</translation>
    </message>
    <message>
        <source>In the backup</source>
        <translation>In der Sicherung</translation>
    </message>
    <message>
        <source>On the device</source>
        <translation>Auf dem Gerät</translation>
    </message>
    <message>
        <source>Live photo</source>
        <translation>Live-Foto</translation>
    </message>
    <message>
        <source>with a film of %1</source>
        <translation>mit einem Film von %1</translation>
    </message>
    <message>
        <source>with a film</source>
        <translation>mit einem Film</translation>
    </message>
</context>
<context>
    <name>snaplift::PhotoExporter</name>
    <message>
        <source>Export Anyway</source>
        <translation>Trotzdem exportieren</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Photos Are Still Being Exported</source>
        <translation>Es werden noch Fotos exportiert</translation>
    </message>
    <message>
        <source>If you stop now, the photos in hand are finished and the others stay in the backup.</source>
        <translation>Wenn Sie jetzt stoppen, werden begonnene Fotos noch fertiggestellt; die übrigen bleiben in der Sicherung.</translation>
    </message>
    <message>
        <source>Stop and Quit</source>
        <translation>Stoppen und beenden</translation>
    </message>
</context>
<context>
    <name>snaplift::PhotoFinder</name>
    <message>
        <source>1 edited or other picture is hidden</source>
        <translation>1 bearbeitetes oder sonstiges Bild ist ausgeblendet</translation>
    </message>
    <message numerus="yes">
        <source>%Ln edited and other pictures are hidden</source>
        <translation>
            <numerusform>%Ln bearbeitetes oder sonstiges Bild ist ausgeblendet</numerusform>
            <numerusform>%Ln bearbeitete und sonstige Bilder sind ausgeblendet</numerusform>
        </translation>
    </message>
    <message>
        <source>No Photos Are Camera Originals</source>
        <translation>Keine Originale der Kamera</translation>
    </message>
    <message>
        <source>No Photos Match “%1”</source>
        <translation>Keine Fotos passen zu „%1“</translation>
    </message>
</context>
<context>
    <name>snaplift::PhotoPreview</name>
    <message>
        <source>Previous Photo</source>
        <translation>Vorheriges Foto</translation>
    </message>
    <message>
        <source>Next Photo</source>
        <translation>Nächstes Foto</translation>
    </message>
    <message>
        <source>Close Preview</source>
        <translation>Vorschau schließen</translation>
    </message>
    <message>
        <source>Open in Player</source>
        <translation>Im Abspielprogramm öffnen</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>The backup has no picture of this film.</source>
        <translation>Die Sicherung enthält kein Bild dieses Films.</translation>
    </message>
</context>
<context>
    <name>snaplift::SLAppDelegate</name>
    <message>
        <source>About Snaplift</source>
        <translation>Über Snaplift</translation>
    </message>
    <message>
        <source>Gets photos back out of the backups of old handsets.</source>
        <translation>Holt Fotos aus den Sicherungen alter Handys zurück.</translation>
    </message>
    <message>
        <source>Backups are only read, never changed.</source>
        <translation>Sicherungen werden nur gelesen, niemals verändert.</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Wird geladen...</translation>
    </message>
    <message>
        <source>Reveal In Finder</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Pictures at %1 percent of their largest size</source>
        <translation>Bilder in %1 Prozent ihrer vollen Größe</translation>
    </message>
    <message>
        <source>No Photos Found in This Backup</source>
        <translation>In dieser Sicherung wurden keine Fotos gefunden</translation>
    </message>
    <message>
        <source>Backup is Encrypted</source>
        <translation>Die Sicherung ist verschlüsselt</translation>
    </message>
    <message>
        <source>This Backup is Encrypted</source>
        <translation>Diese Sicherung ist verschlüsselt</translation>
    </message>
    <message>
        <source>Snaplift cannot recover photos from this backup because it is encrypted.  You must use iTunes to restore them to an iOS device.</source>
        <translation>Snaplift kann aus dieser Sicherung keine Fotos wiederherstellen, weil sie verschlüsselt ist. Sie müssen sie mit iTunes auf einem iOS-Gerät wiederherstellen.</translation>
    </message>
    <message>
        <source>This Backup is Damaged</source>
        <translation>Diese Sicherung ist beschädigt</translation>
    </message>
    <message>
        <source>Snaplift shows every photo that it could find, but some of the files that list the photos cannot be read. Photos may be missing.</source>
        <translation>Snaplift zeigt alle Fotos, die zu finden waren, aber einige der Dateien, in denen die Fotos verzeichnet sind, können nicht gelesen werden. Möglicherweise fehlen Fotos.</translation>
    </message>
    <message>
        <source>Show Them</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>This Film Cannot Be Opened</source>
        <translation>Dieser Film kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>The desktop has no program that opens films of this kind.</source>
        <translation>Auf diesem System gibt es kein Programm, das solche Filme öffnet.</translation>
    </message>
    <message>
        <source>Export All...</source>
        <translation>Alle exportieren...</translation>
    </message>
    <message>
        <source>No Photos</source>
        <translation>Keine Fotos</translation>
    </message>
    <message>
        <source>Close Folder</source>
        <translation>Ordner schließen</translation>
    </message>
    <message>
        <source>“%1” Can No Longer Be Read</source>
        <translation>„%1“ ist nicht mehr lesbar</translation>
    </message>
    <message>
        <source>Its disk has gone or fails: photos cannot be read, and backups may be missing from the list. Connect the disk again to see them:</source>
        <translation>Der Datenträger wurde entfernt oder ist gestört: Fotos können nicht gelesen werden, und in der Liste fehlen möglicherweise Sicherungen. Schließen Sie den Datenträger wieder an, um sie zu sehen:</translation>
    </message>
    <message>
        <source>No backup folders found</source>
        <translation>Keine Sicherungen gefunden</translation>
    </message>
    <message>
        <source>Snaplift could not locate any valid iOS backups in your ~/Library/Application Support/MobileSync/Backups/ folder.</source>
        <translation>Snaplift konnte in Ihrem Ordner ~/Library/Application Support/MobileSync/Backups/ keine gültigen iOS-Sicherungen finden.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Ordner wählen...</translation>
    </message>
    <message>
        <source>1 Backup</source>
        <translation>1 Sicherung</translation>
    </message>
    <message numerus="yes">
        <source>%n Backups</source>
        <translation>
            <numerusform>%n Sicherung</numerusform>
            <numerusform>%n Sicherungen</numerusform>
        </translation>
    </message>
    <message>
        <source>Open %1 on “%2”</source>
        <translation>%1 auf „%2“ öffnen</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>The Photos Cannot Be Exported</source>
        <translation>Die Fotos können nicht exportiert werden</translation>
    </message>
    <message>
        <source>“%1” Cannot Be Opened</source>
        <translation>„%1“ kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Snaplift looked into every folder below it. A backup is a folder that holds a file “Info.plist” beside a “Manifest.plist”, and many files with long names of digits and letters.</source>
        <translation>Snaplift hat alle Unterordner durchsucht. Eine Sicherung ist ein Ordner, in dem neben den Dateien „Info.plist“ und „Manifest.plist“ viele Dateien liegen, deren lange Namen aus Ziffern und Buchstaben bestehen.</translation>
    </message>
    <message numerus="yes">
        <source>There is no permission to read %n of its folders.</source>
        <translation>
            <numerusform>Für %n seiner Unterordner fehlt die Leseberechtigung.</numerusform>
            <numerusform>Für %n seiner Unterordner fehlt die Leseberechtigung.</numerusform>
        </translation>
    </message>
    <message>
        <source>No Backups Found in “%1”</source>
        <translation>Keine Sicherungen in „%1“ gefunden</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Searching for backups in %1</source>
        <translation>Sicherungen werden gesucht in %1</translation>
    </message>
    <message numerus="yes">
        <source>Backups may be missing: there is no permission to read %n of the folders in “%1”.</source>
        <translation>
            <numerusform>Möglicherweise fehlen Sicherungen: für %n der Ordner in „%1“ fehlt die Leseberechtigung.</numerusform>
            <numerusform>Möglicherweise fehlen Sicherungen: für %n der Ordner in „%1“ fehlt die Leseberechtigung.</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
    <message>
        <source>“%1” does not answer. Its disk may be busy, asleep or gone; photos come as soon as it answers.</source>
        <translation>„%1“ antwortet nicht. Das Laufwerk ist vielleicht beschäftigt, im Ruhezustand oder nicht mehr da; die Fotos kommen, sobald es antwortet.</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Export läuft</translation>
    </message>
    <message>
        <source>Still waiting for an answer from %1</source>
        <translation>Immer noch keine Antwort von %1</translation>
    </message>
    <message>
        <source>Export All of This Device...</source>
        <translation>Alles von diesem Gerät exportieren...</translation>
    </message>
    <message>
        <source>Reveal</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Export...</source>
        <translation>Exportieren...</translation>
    </message>
    <message>
        <source>Backup of</source>
        <translation>Sicherung vom</translation>
    </message>
    <message>
        <source>System version</source>
        <translation>Systemversion</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Export &amp;All...</source>
        <translation>&amp;Alle exportieren...</translation>
    </message>
    <message>
        <source>Export &amp;All Shown (%L1 of %L2)...</source>
        <translation>&amp;Alle gezeigten exportieren (%L1 von %L2)...</translation>
    </message>
    <message>
        <source>Copy every photo of this backup into a folder</source>
        <translation>Alle Fotos dieser Sicherung in einen Ordner kopieren</translation>
    </message>
    <message>
        <source>Copy the photos that are shown, %L1 of %L2, into a folder</source>
        <translation>Die gezeigten Fotos, %L1 von %L2, in einen Ordner kopieren</translation>
    </message>
    <message>
        <source>Export Shown...</source>
        <translation>Gezeigte exportieren...</translation>
    </message>
</context>
<context>
    <name>snaplift::SelectionDetails</name>
    <message>
        <source>%1 Selected</source>
        <translation>%1 ausgewählt</translation>
    </message>
    <message>
        <source>Size of these photos</source>
        <translation>Größe dieser Fotos</translation>
    </message>
</context>
</TS>
