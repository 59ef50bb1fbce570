<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>AtomicFile</name>
    <message>
        <source>&quot;%1&quot; cannot be written: %2</source>
        <translation>„%1“ kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written: it is not an ordinary file</source>
        <translation>„%1“ kann nicht geschrieben werden: es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written: it is write-protected</source>
        <translation>„%1“ kann nicht geschrieben werden: die Datei ist schreibgeschützt</translation>
    </message>
</context>
<context>
    <name>ByteBudget</name>
    <message>
        <source>%1 of memory would be needed, and %2 may be used</source>
        <translation>es würden %1 Speicher benötigt, erlaubt sind %2</translation>
    </message>
</context>
<context>
    <name>Commands</name>
    <message>
        <source>Photos are being saved.</source>
        <translation>Es werden gerade Fotos gespeichert.</translation>
    </message>
    <message>
        <source>There are no photos.</source>
        <translation>Es sind keine Fotos vorhanden.</translation>
    </message>
    <message>
        <source>There is only one photo.</source>
        <translation>Es ist nur ein Foto vorhanden.</translation>
    </message>
    <message>
        <source>Select at least one photo first.</source>
        <translation>Wählen Sie zuerst mindestens ein Foto aus.</translation>
    </message>
    <message>
        <source>Switch to the Small Batch mode first.</source>
        <translation>Wechseln Sie zuerst zum kleinen Stapel.</translation>
    </message>
    <message>
        <source>Photos are being rotated.</source>
        <translation>Es werden gerade Fotos gedreht.</translation>
    </message>
    <message>
        <source>Positions are being pasted.</source>
        <translation>Es werden gerade Positionen eingefügt.</translation>
    </message>
    <message>
        <source>There is nothing to undo.</source>
        <translation>Es gibt nichts rückgängig zu machen.</translation>
    </message>
    <message>
        <source>There is nothing to redo.</source>
        <translation>Es gibt nichts wiederherzustellen.</translation>
    </message>
    <message>
        <source>Photos are being sorted.</source>
        <translation>Es werden gerade Fotos sortiert.</translation>
    </message>
    <message>
        <source>Apply at least one preset first.</source>
        <translation>Wenden Sie zuerst mindestens eine Vorgabe an.</translation>
    </message>
    <message>
        <source>Select one applied preset first.</source>
        <translation>Wählen Sie zuerst eine angewendete Vorgabe aus.</translation>
    </message>
    <message>
        <source>Select one photo on which the current watermark has a manual position.</source>
        <translation>Wählen Sie ein Foto aus, auf dem das aktuelle Wasserzeichen von Hand platziert ist.</translation>
    </message>
    <message>
        <source>Select one photo on which a watermark has a manual position.</source>
        <translation>Wählen Sie ein Foto aus, auf dem ein Wasserzeichen von Hand platziert ist.</translation>
    </message>
    <message>
        <source>Copy a position first.</source>
        <translation>Kopieren Sie zuerst eine Position.</translation>
    </message>
    <message>
        <source>No preset is applied.</source>
        <translation>Es ist keine Vorgabe angewendet.</translation>
    </message>
    <message>
        <source>Apply at least two presets first.</source>
        <translation>Wenden Sie zuerst mindestens zwei Vorgaben an.</translation>
    </message>
    <message>
        <source>Select at least one applied preset first.</source>
        <translation>Wählen Sie zuerst mindestens eine angewendete Vorgabe aus.</translation>
    </message>
    <message>
        <source>Select at least one preset in the list of all presets first.</source>
        <translation>Wählen Sie zuerst in der Liste aller Vorgaben mindestens eine aus.</translation>
    </message>
    <message>
        <source>Select one preset in the list of all presets first.</source>
        <translation>Wählen Sie zuerst in der Liste aller Vorgaben eine aus.</translation>
    </message>
    <message>
        <source>Load a preset into the single watermark first, or save that as a new one.</source>
        <translation>Laden Sie zuerst eine Vorgabe in das einzelne Wasserzeichen oder speichern Sie dieses als neue.</translation>
    </message>
    <message>
        <source>The selected photos are the first ones.</source>
        <translation>Die ausgewählten Fotos sind die ersten.</translation>
    </message>
    <message>
        <source>The selected photos are the last ones.</source>
        <translation>Die ausgewählten Fotos sind die letzten.</translation>
    </message>
    <message>
        <source>The selected presets are the first ones.</source>
        <translation>Die ausgewählten Vorgaben sind die ersten.</translation>
    </message>
    <message>
        <source>The selected presets are the last ones.</source>
        <translation>Die ausgewählten Vorgaben sind die letzten.</translation>
    </message>
    <message>
        <source>The thumbnails have their largest size.</source>
        <translation>Die Miniaturen sind schon so groß wie möglich.</translation>
    </message>
    <message>
        <source>The thumbnails have their smallest size.</source>
        <translation>Die Miniaturen sind schon so klein wie möglich.</translation>
    </message>
    <message>
        <source>There is no photo, or it is shown at its full size.</source>
        <translation>Es gibt kein Foto, oder es wird in voller Größe gezeigt.</translation>
    </message>
    <message>
        <source>The whole photo is shown.</source>
        <translation>Das ganze Foto ist zu sehen.</translation>
    </message>
    <message>
        <source>&amp;Add Photos…</source>
        <translation>Fotos &amp;hinzufügen…</translation>
    </message>
    <message>
        <source>Add photos to the list</source>
        <translation>Fotos zur Liste hinzufügen</translation>
    </message>
    <message>
        <source>Add &amp;Folder…</source>
        <translation>&amp;Ordner hinzufügen…</translation>
    </message>
    <message>
        <source>Add all photos of a folder and of the folders in it</source>
        <translation>Alle Fotos eines Ordners und seiner Unterordner hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Save Selected…</source>
        <translation>Auswahl &amp;speichern…</translation>
    </message>
    <message>
        <source>Save watermarked copies of the selected photos</source>
        <translation>Kopien der ausgewählten Fotos mit Wasserzeichen speichern</translation>
    </message>
    <message>
        <source>Save A&amp;ll…</source>
        <translation>&amp;Alle speichern…</translation>
    </message>
    <message>
        <source>Save watermarked copies of all photos in the list</source>
        <translation>Kopien aller Fotos der Liste mit Wasserzeichen speichern</translation>
    </message>
    <message>
        <source>&amp;Open Selected in Brevix</source>
        <translation>Auswahl in B&amp;revix öffnen</translation>
    </message>
    <message>
        <source>Open watermarked copies of the selected photos in Brevix for resizing</source>
        <translation>Kopien der ausgewählten Fotos mit Wasserzeichen in Brevix öffnen, um ihre Größe zu ändern</translation>
    </message>
    <message>
        <source>Open All in &amp;Brevix</source>
        <translation>Alle in Bre&amp;vix öffnen</translation>
    </message>
    <message>
        <source>Open watermarked copies of all photos in the list in Brevix for resizing</source>
        <translation>Kopien aller Fotos der Liste mit Wasserzeichen in Brevix öffnen, um ihre Größe zu ändern</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>Im &amp;Dateimanager zeigen</translation>
    </message>
    <message>
        <source>Show the selected photos in their folders</source>
        <translation>Die ausgewählten Fotos in ihren Ordnern zeigen</translation>
    </message>
    <message>
        <source>&amp;Close Window</source>
        <translation>&amp;Fenster schließen</translation>
    </message>
    <message>
        <source>Close this window</source>
        <translation>Dieses Fenster schließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Quit Plexa</source>
        <translation>Plexa beenden</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Re&amp;do</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>Make the last undone change again</source>
        <translation>Die zuletzt rückgängig gemachte Änderung wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the selected photos with their watermarks to the clipboard</source>
        <translation>Die ausgewählten Fotos mit ihren Wasserzeichen in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alle auswählen</translation>
    </message>
    <message>
        <source>Select all photos in the list</source>
        <translation>Alle Fotos der Liste auswählen</translation>
    </message>
    <message>
        <source>Select &amp;None</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <source>Select no photo</source>
        <translation>Kein Foto auswählen</translation>
    </message>
    <message>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl &amp;umkehren</translation>
    </message>
    <message>
        <source>Select the photos that are not selected</source>
        <translation>Die Fotos auswählen, die nicht ausgewählt sind</translation>
    </message>
    <message>
        <source>&amp;Move Up</source>
        <translation>Nach &amp;oben verschieben</translation>
    </message>
    <message>
        <source>Move the selected photos one place towards the beginning of the list</source>
        <translation>Die ausgewählten Fotos um einen Platz zum Anfang der Liste verschieben</translation>
    </message>
    <message>
        <source>M&amp;ove Down</source>
        <translation>Nach u&amp;nten verschieben</translation>
    </message>
    <message>
        <source>Move the selected photos one place towards the end of the list</source>
        <translation>Die ausgewählten Fotos um einen Platz zum Ende der Liste verschieben</translation>
    </message>
    <message>
        <source>Remo&amp;ve from List</source>
        <translation>Aus der Liste entf&amp;ernen</translation>
    </message>
    <message>
        <source>Remove the selected photos from the list; the files stay</source>
        <translation>Die ausgewählten Fotos aus der Liste entfernen; die Dateien bleiben</translation>
    </message>
    <message>
        <source>&amp;Find…</source>
        <translation>&amp;Suchen…</translation>
    </message>
    <message>
        <source>Show only photos whose names contain a text</source>
        <translation>Nur Fotos zeigen, deren Name einen Text enthält</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>E&amp;instellungen…</translation>
    </message>
    <message>
        <source>Change how Plexa works</source>
        <translation>Die Arbeitsweise von Plexa ändern</translation>
    </message>
    <message>
        <source>Turn &amp;Left</source>
        <translation>Nach &amp;links drehen</translation>
    </message>
    <message>
        <source>Rotate the selected photos counter-clockwise</source>
        <translation>Die ausgewählten Fotos gegen den Uhrzeigersinn drehen</translation>
    </message>
    <message>
        <source>Turn &amp;Right</source>
        <translation>Nach rech&amp;ts drehen</translation>
    </message>
    <message>
        <source>Rotate the selected photos clockwise</source>
        <translation>Die ausgewählten Fotos im Uhrzeigersinn drehen</translation>
    </message>
    <message>
        <source>Turn &amp;Upside Down</source>
        <translation>&amp;Auf den Kopf stellen</translation>
    </message>
    <message>
        <source>Rotate the selected photos by 180°</source>
        <translation>Die ausgewählten Fotos um 180° drehen</translation>
    </message>
    <message>
        <source>Mirror L&amp;eft to Right</source>
        <translation>Links-rechts s&amp;piegeln</translation>
    </message>
    <message>
        <source>Mirror the selected photos left to right</source>
        <translation>Bei den ausgewählten Fotos links und rechts vertauschen</translation>
    </message>
    <message>
        <source>Mirror &amp;Top to Bottom</source>
        <translation>&amp;Oben-unten spiegeln</translation>
    </message>
    <message>
        <source>Mirror the selected photos top to bottom</source>
        <translation>Bei den ausgewählten Fotos oben und unten vertauschen</translation>
    </message>
    <message>
        <source>&amp;Copy Position</source>
        <translation>Position &amp;kopieren</translation>
    </message>
    <message>
        <source>Copy the position to which the current watermark was dragged on this photo</source>
        <translation>Die Position kopieren, an die das aktuelle Wasserzeichen auf diesem Foto gezogen wurde</translation>
    </message>
    <message>
        <source>Copy &amp;All Positions</source>
        <translation>Alle Po&amp;sitionen kopieren</translation>
    </message>
    <message>
        <source>Copy the positions to which all watermarks were dragged on this photo</source>
        <translation>Die Positionen kopieren, an die alle Wasserzeichen auf diesem Foto gezogen wurden</translation>
    </message>
    <message>
        <source>&amp;Paste Positions</source>
        <translation>Positionen &amp;einfügen</translation>
    </message>
    <message>
        <source>Move the watermarks of the selected photos to the copied positions</source>
        <translation>Die Wasserzeichen der ausgewählten Fotos an die kopierten Positionen verschieben</translation>
    </message>
    <message>
        <source>Reset Positio&amp;n</source>
        <translation>Position &amp;zurücksetzen</translation>
    </message>
    <message>
        <source>Move the current watermark of the selected photos back to its own position</source>
        <translation>Das aktuelle Wasserzeichen der ausgewählten Fotos an seine eigene Position zurücksetzen</translation>
    </message>
    <message>
        <source>Reset All Po&amp;sitions</source>
        <translation>Alle Positionen zu&amp;rücksetzen</translation>
    </message>
    <message>
        <source>Move all watermarks of the selected photos back to their own positions</source>
        <translation>Alle Wasserzeichen der ausgewählten Fotos an ihre eigenen Positionen zurücksetzen</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Show the preview larger</source>
        <translation>Die Vorschau größer zeigen</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Show the preview smaller</source>
        <translation>Die Vorschau kleiner zeigen</translation>
    </message>
    <message>
        <source>&amp;Fit in Preview</source>
        <translation>In die Vorschau &amp;einpassen</translation>
    </message>
    <message>
        <source>Show the whole photo in the preview</source>
        <translation>Das ganze Foto in der Vorschau zeigen</translation>
    </message>
    <message>
        <source>&amp;100 %</source>
        <translation>&amp;100 %</translation>
    </message>
    <message>
        <source>Show the photo in the preview at its full size</source>
        <translation>Das Foto in der Vorschau in voller Größe zeigen</translation>
    </message>
    <message>
        <source>&amp;Larger Thumbnails</source>
        <translation>Größere &amp;Miniaturen</translation>
    </message>
    <message>
        <source>Show larger thumbnails</source>
        <translation>Größere Miniaturen zeigen</translation>
    </message>
    <message>
        <source>&amp;Smaller Thumbnails</source>
        <translation>Kleinere M&amp;iniaturen</translation>
    </message>
    <message>
        <source>Show smaller thumbnails</source>
        <translation>Kleinere Miniaturen zeigen</translation>
    </message>
    <message>
        <source>Hide File&amp;names in Browser</source>
        <translation>Datei&amp;namen ausblenden</translation>
    </message>
    <message>
        <source>Show or hide the file names under the thumbnails</source>
        <translation>Die Dateinamen unter den Miniaturen ein- oder ausblenden</translation>
    </message>
    <message>
        <source>&amp;Watermarks on Thumbnails</source>
        <translation>&amp;Wasserzeichen auf Miniaturen</translation>
    </message>
    <message>
        <source>Show the watermarks on the thumbnails</source>
        <translation>Die Wasserzeichen auf den Miniaturen zeigen</translation>
    </message>
    <message>
        <source>Sort by Na&amp;me</source>
        <translation>Nach &amp;Dateinamen sortieren</translation>
    </message>
    <message>
        <source>Sort all photos by their file names, 2 before 10</source>
        <translation>Alle Fotos nach ihren Dateinamen sortieren, 2 vor 10</translation>
    </message>
    <message>
        <source>Sort by Capture &amp;Date</source>
        <translation>Nach &amp;Aufnahmedatum sortieren</translation>
    </message>
    <message>
        <source>Sort all photos by the dates on which they were taken; photos without a date come last</source>
        <translation>Alle Fotos nach ihrem Aufnahmedatum sortieren; Fotos ohne Datum kommen zuletzt</translation>
    </message>
    <message>
        <source>&amp;Reverse Order</source>
        <translation>&amp;Reihenfolge umkehren</translation>
    </message>
    <message>
        <source>Make the last photo the first one</source>
        <translation>Das letzte Foto zum ersten machen</translation>
    </message>
    <message>
        <source>Switch to Large &amp;Batch Mode</source>
        <translation>Zum großen &amp;Stapel wechseln</translation>
    </message>
    <message>
        <source>Switch to the Large Batch mode. Recommended if you work with many images.</source>
        <translation>Zum großen Stapel wechseln. Empfohlen, wenn Sie mit vielen Fotos arbeiten.</translation>
    </message>
    <message>
        <source>&amp;Single Watermark</source>
        <translation>&amp;Einzelnes Wasserzeichen</translation>
    </message>
    <message>
        <source>Draw one watermark and edit it here</source>
        <translation>Ein einziges Wasserzeichen zeichnen und hier bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Presets</source>
        <translation>&amp;Vorgaben</translation>
    </message>
    <message>
        <source>Draw the applied presets together</source>
        <translation>Die angewendeten Vorgaben zusammen zeichnen</translation>
    </message>
    <message>
        <source>&amp;Next Applied Preset</source>
        <translation>&amp;Nächste angewendete Vorgabe</translation>
    </message>
    <message>
        <source>Select the next applied preset</source>
        <translation>Die nächste angewendete Vorgabe auswählen</translation>
    </message>
    <message>
        <source>Pre&amp;vious Applied Preset</source>
        <translation>Vor&amp;herige angewendete Vorgabe</translation>
    </message>
    <message>
        <source>Select the previous applied preset</source>
        <translation>Die vorherige angewendete Vorgabe auswählen</translation>
    </message>
    <message>
        <source>&amp;Apply Selected Presets</source>
        <translation>Ausgewählte Vorgaben &amp;anwenden</translation>
    </message>
    <message>
        <source>Also draw the selected presets on the photos</source>
        <translation>Auch die ausgewählten Vorgaben auf die Fotos zeichnen</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>Nach &amp;oben verschieben</translation>
    </message>
    <message>
        <source>Draw the selected applied presets earlier, below others</source>
        <translation>Die ausgewählten angewendeten Vorgaben früher zeichnen, unter anderen</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>Nach &amp;unten verschieben</translation>
    </message>
    <message>
        <source>Draw the selected applied presets later, above others</source>
        <translation>Die ausgewählten angewendeten Vorgaben später zeichnen, über anderen</translation>
    </message>
    <message>
        <source>&amp;Remove Selected Presets</source>
        <translation>Ausgewählte Vorgaben ent&amp;fernen</translation>
    </message>
    <message>
        <source>Stop drawing the selected presets</source>
        <translation>Die ausgewählten Vorgaben nicht mehr zeichnen</translation>
    </message>
    <message>
        <source>&amp;Clear Applied Presets</source>
        <translation>Angewendete Vorgaben &amp;leeren</translation>
    </message>
    <message>
        <source>Stop drawing all presets</source>
        <translation>Keine Vorgabe mehr zeichnen</translation>
    </message>
    <message>
        <source>Sav&amp;e as New Preset</source>
        <translation>Als neue Vorgabe &amp;speichern</translation>
    </message>
    <message>
        <source>Keep the single watermark as a preset</source>
        <translation>Das einzelne Wasserzeichen als Vorgabe behalten</translation>
    </message>
    <message>
        <source>Upda&amp;te Loaded Preset</source>
        <translation>Geladene Vorgabe ak&amp;tualisieren</translation>
    </message>
    <message>
        <source>Give the preset that was loaded last the settings of the single watermark</source>
        <translation>Der zuletzt geladenen Vorgabe die Einstellungen des einzelnen Wasserzeichens geben</translation>
    </message>
    <message>
        <source>&amp;Load into Single Watermark</source>
        <translation>&amp;In einzelnes Wasserzeichen laden</translation>
    </message>
    <message>
        <source>Edit a copy of the selected preset as the single watermark</source>
        <translation>Eine Kopie der ausgewählten Vorgabe als einzelnes Wasserzeichen bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Manage Presets…</source>
        <translation>Vorgaben ver&amp;walten…</translation>
    </message>
    <message>
        <source>Create, edit and remove watermark presets</source>
        <translation>Wasserzeichen-Vorgaben anlegen, bearbeiten und entfernen</translation>
    </message>
    <message>
        <source>Mana&amp;ge Saving Presets…</source>
        <translation>Speichervor&amp;gaben verwalten…</translation>
    </message>
    <message>
        <source>Create, edit and remove saving presets</source>
        <translation>Speichervorgaben anlegen, bearbeiten und entfernen</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>&amp;Minimieren</translation>
    </message>
    <message>
        <source>Minimize this window</source>
        <translation>Dieses Fenster minimieren</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>Fill the screen with this window</source>
        <translation>Den ganzen Bildschirm mit diesem Fenster füllen</translation>
    </message>
    <message>
        <source>Main &amp;Window</source>
        <translation>&amp;Hauptfenster</translation>
    </message>
    <message>
        <source>Bring this window to the front</source>
        <translation>Dieses Fenster nach vorn holen</translation>
    </message>
    <message>
        <source>Watermark &amp;Presets</source>
        <translation>&amp;Wasserzeichen-Vorgaben</translation>
    </message>
    <message>
        <source>Show or close the window of all watermark presets</source>
        <translation>Das Fenster aller Wasserzeichen-Vorgaben zeigen oder schließen</translation>
    </message>
    <message>
        <source>&amp;Saving Presets</source>
        <translation>&amp;Speichervorgaben</translation>
    </message>
    <message>
        <source>Show or close the window of all saving presets</source>
        <translation>Das Fenster aller Speichervorgaben zeigen oder schließen</translation>
    </message>
    <message>
        <source>Image Meta&amp;data</source>
        <translation>Bildmetadate&amp;n</translation>
    </message>
    <message>
        <source>Show and edit the metadata of the selected photos</source>
        <translation>Die Metadaten der ausgewählten Fotos zeigen und bearbeiten</translation>
    </message>
    <message>
        <source>Read how Plexa works</source>
        <translation>Nachlesen, wie Plexa funktioniert</translation>
    </message>
    <message>
        <source>&amp;What’s This?</source>
        <translation>&amp;Was ist das?</translation>
    </message>
    <message>
        <source>Explain the item that you click next</source>
        <translation>Das Element erklären, auf das Sie als Nächstes klicken</translation>
    </message>
    <message>
        <source>Give &amp;Feedback</source>
        <translation>&amp;Rückmeldung geben</translation>
    </message>
    <message>
        <source>Tell the makers of Plexa what to improve</source>
        <translation>Dem Hersteller von Plexa mitteilen, was besser werden soll</translation>
    </message>
    <message>
        <source>&amp;About Plexa</source>
        <translation>Ü&amp;ber Plexa</translation>
    </message>
    <message>
        <source>Show the version and the license</source>
        <translation>Version und Lizenz zeigen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Image</source>
        <translation>B&amp;ild</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>Wa&amp;termark</source>
        <translation>&amp;Wasserzeichen</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Plexa &amp;Help</source>
        <translation>Plexa-&amp;Hilfe</translation>
    </message>
    <message>
        <source>Contact &amp;Support…</source>
        <translation>&amp;Support kontaktieren…</translation>
    </message>
    <message>
        <source>Write a message to the makers of Plexa in your mail program</source>
        <translation>Dem Hersteller von Plexa in Ihrem Mailprogramm eine Nachricht schreiben</translation>
    </message>
    <message>
        <source>&amp;License</source>
        <translation>&amp;Lizenz</translation>
    </message>
    <message>
        <source>Read the license of Plexa</source>
        <translation>Die Lizenz von Plexa lesen</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>Nach &amp;Updates suchen…</translation>
    </message>
    <message>
        <source>Ask the maker whether there is a newer version</source>
        <translation>Beim Hersteller anfragen, ob es eine neuere Version gibt</translation>
    </message>
    <message>
        <source>Undo the last change to photos, watermarks or presets</source>
        <translation>Die letzte Änderung an Fotos, Wasserzeichen oder Vorgaben rückgängig machen</translation>
    </message>
</context>
<context>
    <name>FieldChoices</name>
    <message>
        <source>% of width</source>
        <translation>% der Breite</translation>
    </message>
    <message>
        <source>% of height</source>
        <translation>% der Höhe</translation>
    </message>
    <message>
        <source>% of long edge</source>
        <translation>% lange Seite</translation>
    </message>
    <message>
        <source>% of short edge</source>
        <translation>% kurze Seite</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Points</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>do not change</source>
        <translation>nicht ändern</translation>
    </message>
    <message>
        <source>lower case</source>
        <translation>Kleinbuchstaben</translation>
    </message>
    <message>
        <source>upper case</source>
        <translation>Großbuchstaben</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Darken</source>
        <translation>Abdunkeln</translation>
    </message>
    <message>
        <source>Multiply</source>
        <translation>Multiplizieren</translation>
    </message>
    <message>
        <source>Color Burn</source>
        <translation>Farbig nachbelichten</translation>
    </message>
    <message>
        <source>Lighten</source>
        <translation>Aufhellen</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Negativ multiplizieren</translation>
    </message>
    <message>
        <source>Color Dodge</source>
        <translation>Farbig abwedeln</translation>
    </message>
    <message>
        <source>Overlay</source>
        <translation>Ineinanderkopieren</translation>
    </message>
    <message>
        <source>Soft Light</source>
        <translation>Weiches Licht</translation>
    </message>
    <message>
        <source>Hard Light</source>
        <translation>Hartes Licht</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>Differenz</translation>
    </message>
    <message>
        <source>Exclusion</source>
        <translation>Ausschluss</translation>
    </message>
    <message>
        <source>Hue</source>
        <translation>Farbton</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Sättigung</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Luminosity</source>
        <translation>Luminanz</translation>
    </message>
</context>
<context>
    <name>FolderWalk</name>
    <message>
        <source>the folder cannot be read: %1</source>
        <translation>der Ordner kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>its path is too long</source>
        <translation>der Pfad ist zu lang</translation>
    </message>
    <message>
        <source>its name is not valid UTF-8</source>
        <translation>der Name ist kein gültiges UTF-8</translation>
    </message>
    <message>
        <source>it cannot be read: %1</source>
        <translation>nicht lesbar: %1</translation>
    </message>
</context>
<context>
    <name>ImageChooser</name>
    <message>
        <source>Images (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <source>Choose Picture</source>
        <translation>Bild auswählen</translation>
    </message>
    <message>
        <source>Add Photos</source>
        <translation>Fotos hinzufügen</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>ImageMetadata</name>
    <message>
        <source>Orientation</source>
        <translation>Ausrichtung</translation>
    </message>
    <message>
        <source>Horizontal resolution</source>
        <translation>Horizontale Auflösung</translation>
    </message>
    <message>
        <source>Vertical resolution</source>
        <translation>Vertikale Auflösung</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>Bit depth</source>
        <translation>Bittiefe</translation>
    </message>
    <message>
        <source>Color model</source>
        <translation>Farbmodell</translation>
    </message>
    <message>
        <source>ICC profile</source>
        <translation>ICC-Profil</translation>
    </message>
    <message>
        <source>Date taken</source>
        <translation>Aufnahmedatum</translation>
    </message>
    <message>
        <source>Date digitized</source>
        <translation>Digitalisierungsdatum</translation>
    </message>
    <message>
        <source>Subseconds taken</source>
        <translation>Sekundenteil (Aufnahme)</translation>
    </message>
    <message>
        <source>Subseconds digitized</source>
        <translation>Sekundenteil (digital)</translation>
    </message>
    <message>
        <source>Exposure time</source>
        <translation>Belichtungszeit</translation>
    </message>
    <message>
        <source>F-number</source>
        <translation>Blende</translation>
    </message>
    <message>
        <source>ISO speed</source>
        <translation>ISO-Empfindlichkeit</translation>
    </message>
    <message>
        <source>Focal length</source>
        <translation>Brennweite</translation>
    </message>
    <message>
        <source>Focal length (35 mm)</source>
        <translation>Brennweite (35 mm)</translation>
    </message>
    <message>
        <source>Flash</source>
        <translation>Blitz</translation>
    </message>
    <message>
        <source>Exposure program</source>
        <translation>Belichtungsprogramm</translation>
    </message>
    <message>
        <source>Exposure bias</source>
        <translation>Belichtungskorrektur</translation>
    </message>
    <message>
        <source>Metering mode</source>
        <translation>Messmethode</translation>
    </message>
    <message>
        <source>User comment</source>
        <translation>Benutzerkommentar</translation>
    </message>
    <message>
        <source>Lens</source>
        <translation>Objektiv</translation>
    </message>
    <message>
        <source>Lens ID</source>
        <translation>Objektiv-ID</translation>
    </message>
    <message>
        <source>Camera serial number</source>
        <translation>Seriennummer der Kamera</translation>
    </message>
    <message>
        <source>Image number</source>
        <translation>Bildnummer</translation>
    </message>
    <message>
        <source>Headline</source>
        <translation>Überschrift</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Keywords</source>
        <translation>Stichwörter</translation>
    </message>
    <message>
        <source>Copyright</source>
        <translation>Copyright</translation>
    </message>
    <message>
        <source>Description writer</source>
        <translation>Verfasser der Beschreibung</translation>
    </message>
    <message>
        <source>Sublocation</source>
        <translation>Ortsdetail</translation>
    </message>
    <message>
        <source>Country</source>
        <translation>Land</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Bundesland</translation>
    </message>
    <message>
        <source>City</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>Creator</source>
        <translation>Urheber</translation>
    </message>
    <message>
        <source>Creator&apos;s title</source>
        <translation>Position des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s e-mail</source>
        <translation>E-Mail des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s website</source>
        <translation>Website des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s phone</source>
        <translation>Telefon des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s country</source>
        <translation>Land des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s state</source>
        <translation>Bundesland des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s city</source>
        <translation>Ort des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s postal code</source>
        <translation>Postleitzahl des Urhebers</translation>
    </message>
    <message>
        <source>Creator&apos;s address</source>
        <translation>Adresse des Urhebers</translation>
    </message>
    <message>
        <source>Software</source>
        <translation>Software</translation>
    </message>
    <message>
        <source>Artist</source>
        <translation>Künstler</translation>
    </message>
    <message>
        <source>Compression</source>
        <translation>Komprimierung</translation>
    </message>
    <message>
        <source>Camera make</source>
        <translation>Kamerahersteller</translation>
    </message>
    <message>
        <source>Camera model</source>
        <translation>Kameramodell</translation>
    </message>
    <message>
        <source>Resolution unit</source>
        <translation>Einheit der Auflösung</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>Breitengrad</translation>
    </message>
    <message>
        <source>Latitude reference</source>
        <translation>Bezug des Breitengrads</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>Längengrad</translation>
    </message>
    <message>
        <source>Longitude reference</source>
        <translation>Bezug des Längengrads</translation>
    </message>
    <message>
        <source>Altitude</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>GPS date</source>
        <translation>GPS-Datum</translation>
    </message>
    <message>
        <source>it must be a whole number from 0 to %1</source>
        <translation>es muss eine ganze Zahl von 0 bis %1 sein</translation>
    </message>
    <message>
        <source>it must be a number</source>
        <translation>es muss eine Zahl sein</translation>
    </message>
    <message>
        <source>it must be a number, 0 or more</source>
        <translation>es muss eine Zahl ab 0 sein</translation>
    </message>
    <message>
        <source>it must be a date such as 2024-12-31 23:59:59</source>
        <translation>es muss ein Datum wie 2024-12-31 23:59:59 sein</translation>
    </message>
    <message>
        <source>it must be up to 9 digits</source>
        <translation>es dürfen nur Ziffern sein, höchstens 9</translation>
    </message>
</context>
<context>
    <name>MetadataPages</name>
    <message>
        <source>upright</source>
        <translation>aufrecht</translation>
    </message>
    <message>
        <source>mirrored</source>
        <translation>gespiegelt</translation>
    </message>
    <message>
        <source>upside down</source>
        <translation>auf dem Kopf</translation>
    </message>
    <message>
        <source>upside down, mirrored</source>
        <translation>auf dem Kopf, gespiegelt</translation>
    </message>
    <message>
        <source>on its left side, mirrored</source>
        <translation>auf der linken Seite, gespiegelt</translation>
    </message>
    <message>
        <source>on its left side</source>
        <translation>auf der linken Seite</translation>
    </message>
    <message>
        <source>on its right side, mirrored</source>
        <translation>auf der rechten Seite, gespiegelt</translation>
    </message>
    <message>
        <source>on its right side</source>
        <translation>auf der rechten Seite</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Size in the file</source>
        <translation>Größe in der Datei</translation>
    </message>
    <message>
        <source>EXIF</source>
        <translation>EXIF</translation>
    </message>
    <message>
        <source>IPTC</source>
        <translation>IPTC</translation>
    </message>
    <message>
        <source>Contact</source>
        <translation>Kontakt</translation>
    </message>
    <message>
        <source>GPS</source>
        <translation>GPS</translation>
    </message>
    <message>
        <source>Image direction</source>
        <translation>Aufnahmerichtung</translation>
    </message>
    <message>
        <source>GPS time</source>
        <translation>GPS-Zeit</translation>
    </message>
    <message>
        <source>did not fire</source>
        <translation>nicht ausgelöst</translation>
    </message>
    <message>
        <source>fired</source>
        <translation>ausgelöst</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>inch</source>
        <translation>Zoll</translation>
    </message>
    <message>
        <source>centimeter</source>
        <translation>Zentimeter</translation>
    </message>
    <message>
        <source>Unit in the file</source>
        <translation>Einheit in der Datei</translation>
    </message>
</context>
<context>
    <name>SystemError</name>
    <message>
        <source>it is a folder</source>
        <translation>es ist ein Ordner</translation>
    </message>
    <message>
        <source>there is no file or folder of this name</source>
        <translation>es gibt keine Datei und keinen Ordner mit diesem Namen</translation>
    </message>
    <message>
        <source>no space left on the disk</source>
        <translation>auf dem Datenträger ist kein Platz mehr</translation>
    </message>
    <message>
        <source>no permission to write into the folder</source>
        <translation>keine Berechtigung, in den Ordner zu schreiben</translation>
    </message>
    <message>
        <source>the disk is read-only</source>
        <translation>der Datenträger ist schreibgeschützt</translation>
    </message>
    <message>
        <source>the folder does not exist</source>
        <translation>der Ordner existiert nicht</translation>
    </message>
    <message>
        <source>a part of its path is not a folder</source>
        <translation>ein Teil des Pfades ist kein Ordner</translation>
    </message>
    <message>
        <source>a folder of that name exists</source>
        <translation>ein Ordner mit diesem Namen ist vorhanden</translation>
    </message>
    <message>
        <source>a file of that name exists already</source>
        <translation>eine Datei mit diesem Namen ist bereits vorhanden</translation>
    </message>
</context>
<context>
    <name>TokenMenu</name>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Creator</source>
        <translation>Urheber</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Uhrzeit</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Belichtung</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Speichern</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Watermarks photographs in batches.</source>
        <translation>Versieht Fotos stapelweise mit Wasserzeichen.</translation>
    </message>
    <message>
        <source>Ask for photos to add, in the window that is open or a new one.</source>
        <translation>Im offenen oder in einem neuen Fenster nach Fotos zum Hinzufügen fragen.</translation>
    </message>
    <message>
        <source>Photos and folders of photos to open.</source>
        <translation>Fotos und Ordner mit Fotos, die geöffnet werden sollen.</translation>
    </message>
</context>
<context>
    <name>plexa::AllPresetsList</name>
    <message>
        <source>All presets</source>
        <translation>Alle Vorgaben</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search all presets</source>
        <translation>Alle Vorgaben durchsuchen</translation>
    </message>
    <message>
        <source>Show only presets whose names contain this text</source>
        <translation>Nur Vorgaben zeigen, deren Name diesen Text enthält</translation>
    </message>
    <message>
        <source>Clear the search</source>
        <translation>Suche löschen</translation>
    </message>
    <message>
        <source>All watermark presets, as they look on the photo of the preview. To apply some, double-click them, press Enter, or drag them to the applied presets.</source>
        <translation>Alle Wasserzeichen-Vorgaben, wie sie auf dem Foto in der Vorschau aussehen. Um Vorgaben anzuwenden, doppelklicken Sie darauf, drücken Sie die Eingabetaste oder ziehen Sie sie zu den angewendeten Vorgaben.</translation>
    </message>
    <message>
        <source>No presets yet</source>
        <translation>Noch keine Vorgaben</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>Laden</translation>
    </message>
    <message>
        <source>Manage</source>
        <translation>Verwalten</translation>
    </message>
</context>
<context>
    <name>plexa::AngleWheel</name>
    <message>
        <source>%1 degrees</source>
        <translation>%1 Grad</translation>
    </message>
</context>
<context>
    <name>plexa::AppDelegate</name>
    <message>
        <source>Your feedback</source>
        <translation>Ihre Meinung</translation>
    </message>
    <message>
        <source>Would you like to tell us how we can further improve %1 for your needs?</source>
        <translation>Möchten Sie uns mitteilen, wie wir %1 für Ihre Bedürfnisse weiter verbessern können?</translation>
    </message>
    <message>
        <source>Give feedback</source>
        <translation>Meinung mitteilen</translation>
    </message>
    <message>
        <source>No, thanks</source>
        <translation>Nein, danke</translation>
    </message>
</context>
<context>
    <name>plexa::BulletinWindow</name>
    <message>
        <source>&amp;Do not show this again</source>
        <translation>&amp;Nicht mehr anzeigen</translation>
    </message>
    <message>
        <source>News</source>
        <translation>Neuigkeiten</translation>
    </message>
    <message>
        <source>News page</source>
        <translation>Seite mit Neuigkeiten</translation>
    </message>
    <message>
        <source>The page could not be loaded.</source>
        <translation>Die Seite konnte nicht geladen werden.</translation>
    </message>
    <message>
        <source>This news is not shown at later starts</source>
        <translation>Diese Neuigkeit wird bei späteren Starts nicht mehr gezeigt</translation>
    </message>
    <message>
        <source>Closes this window</source>
        <translation>Schließt dieses Fenster</translation>
    </message>
</context>
<context>
    <name>plexa::ColorWell</name>
    <message>
        <source>%1, %2 % opaque</source>
        <translation>%1, %2 % deckend</translation>
    </message>
    <message>
        <source>Other Color…</source>
        <translation>Andere Farbe…</translation>
    </message>
</context>
<context>
    <name>plexa::CommandActions</name>
    <message>
        <source>This version does not have this command yet.</source>
        <translation>Diesen Befehl gibt es in dieser Version noch nicht.</translation>
    </message>
</context>
<context>
    <name>plexa::CompanionExchange</name>
    <message>
        <source>The temporary folder could not be created.</source>
        <translation>Der temporäre Ordner konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Could not open images in %1!</source>
        <translation>Die Fotos konnten nicht in %1 geöffnet werden!</translation>
    </message>
    <message>
        <source>Please make sure that %1 is installed.</source>
        <translation>Bitte vergewissern Sie sich, dass %1 installiert ist.</translation>
    </message>
    <message>
        <source>Get %1</source>
        <translation>%1 beziehen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>plexa::DesktopApplication</name>
    <message>
        <source>%1 keeps running</source>
        <translation>%1 läuft weiter</translation>
    </message>
    <message>
        <source>Closing the window does not quit %1. Start it again to see the window again, with the same photos. To quit, press Ctrl+Q.</source>
        <translation>Wenn Sie das Fenster schließen, wird %1 nicht beendet. Starten Sie das Programm erneut, um das Fenster mit denselben Fotos wieder zu sehen. Zum Beenden drücken Sie Strg+Q.</translation>
    </message>
    <message>
        <source>Keep Running</source>
        <translation>Weiterlaufen lassen</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Photos are being saved</source>
        <translation>Fotos werden gespeichert</translation>
    </message>
    <message>
        <source>If you close the window, saving goes on without it. Start %1 again to see the result.</source>
        <translation>Wenn Sie das Fenster schließen, wird ohne Fenster weiter gespeichert. Starten Sie %1 erneut, um das Ergebnis zu sehen.</translation>
    </message>
    <message>
        <source>Keep Window</source>
        <translation>Fenster behalten</translation>
    </message>
    <message>
        <source>Close Window</source>
        <translation>Fenster schließen</translation>
    </message>
    <message>
        <source>If you quit now, photos that are not saved yet get no copies.</source>
        <translation>Wenn Sie jetzt beenden, entstehen von den noch nicht gespeicherten Fotos keine Kopien.</translation>
    </message>
    <message>
        <source>Keep Saving</source>
        <translation>Weiter speichern</translation>
    </message>
    <message>
        <source>Files elsewhere cannot be opened</source>
        <translation>Dateien von anderen Orten können nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Copy them to a folder of this computer first: %1</source>
        <translation>Kopieren Sie sie zuerst in einen Ordner dieses Rechners: %1</translation>
    </message>
</context>
<context>
    <name>plexa::DesktopNotification</name>
    <message>
        <source>Show %1</source>
        <translation>%1 anzeigen</translation>
    </message>
</context>
<context>
    <name>plexa::EncodedPicture</name>
    <message>
        <source>it has no pixels, or they are of an unknown kind</source>
        <translation>es enthält keine Pixel, oder sie sind von unbekannter Art</translation>
    </message>
</context>
<context>
    <name>plexa::FileManager</name>
    <message>
        <source>No program could show the folder “%1”</source>
        <translation>Kein Programm konnte den Ordner „%1“ anzeigen</translation>
    </message>
</context>
<context>
    <name>plexa::FoldingSection</name>
    <message>
        <source>Show or hide these settings</source>
        <translation>Diese Einstellungen ein- oder ausblenden</translation>
    </message>
    <message>
        <source>folded</source>
        <translation>zugeklappt</translation>
    </message>
</context>
<context>
    <name>plexa::HelpWindow</name>
    <message>
        <source>%1 Help</source>
        <translation>%1-Hilfe</translation>
    </message>
    <message>
        <source>Page of the guide</source>
        <translation>Seite des Handbuchs</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Vorwärts</translation>
    </message>
    <message>
        <source>First Page</source>
        <translation>Erste Seite</translation>
    </message>
    <message>
        <source>Smaller Text</source>
        <translation>Kleinerer Text</translation>
    </message>
    <message>
        <source>Larger Text</source>
        <translation>Größerer Text</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search the guide</source>
        <translation>Handbuch durchsuchen</translation>
    </message>
    <message>
        <source>Show the parts of the guide that contain these words (Ctrl+F)</source>
        <translation>Die Abschnitte des Handbuchs zeigen, die diese Wörter enthalten (Strg+F)</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>Places that were found</source>
        <translation>Gefundene Stellen</translation>
    </message>
    <message>
        <source>No part of the guide contains these words.</source>
        <translation>Kein Abschnitt des Handbuchs enthält diese Wörter.</translation>
    </message>
    <message>
        <source>guide</source>
        <extracomment>The name of a folder in docs, which has another guide for each language.</extracomment>
        <translation>guide-de</translation>
    </message>
</context>
<context>
    <name>plexa::ImageBrowserView</name>
    <message>
        <source>Drag &amp; drop images here</source>
        <translation>Fotos hierher ziehen</translation>
    </message>
    <message>
        <source>Images</source>
        <translation>Fotos</translation>
    </message>
</context>
<context>
    <name>plexa::ImageBrowserViewController</name>
    <message>
        <source>%1: photos are being saved already</source>
        <translation>%1: es werden bereits Fotos gespeichert</translation>
    </message>
</context>
<context>
    <name>plexa::ImageGathering</name>
    <message>
        <source>Adding too many images in the Small Batch mode!</source>
        <translation>Zu viele Fotos für den kleinen Stapel!</translation>
    </message>
    <message>
        <source>You are importing over %1 images in the Small Batch mode. This may slow down your computer. Please either switch to the Large Batch mode, or import only %1 images.</source>
        <translation>Sie importieren mehr als %1 Fotos in den kleinen Stapel. Das kann Ihren Computer verlangsamen. Wechseln Sie bitte zum großen Stapel oder importieren Sie nur %1 Fotos.</translation>
    </message>
    <message>
        <source>Switch to the Large Batch mode</source>
        <translation>Zum großen Stapel wechseln</translation>
    </message>
    <message>
        <source>Import only %1 images</source>
        <translation>Nur %1 Fotos importieren</translation>
    </message>
    <message>
        <source>
  ...and %1 more...</source>
        <translation>
  … und %1 weitere …</translation>
    </message>
    <message>
        <source>

Possible reasons:
 • unsupported file format
 • insufficient file access permissions</source>
        <translation>

Mögliche Gründe:
 • nicht unterstütztes Dateiformat
 • unzureichende Zugriffsrechte</translation>
    </message>
    <message>
        <source>Cannot open the following %1 file(s):</source>
        <translation>%1 Datei(en) können nicht geöffnet werden:</translation>
    </message>
</context>
<context>
    <name>plexa::ImageListPane</name>
    <message>
        <source>Size of the thumbnails</source>
        <translation>Größe der Miniaturen</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Show only photos whose names contain this text</source>
        <translation>Nur Fotos zeigen, deren Name diesen Text enthält</translation>
    </message>
    <message>
        <source>Clear the search</source>
        <translation>Suche löschen</translation>
    </message>
    <message>
        <source>View of the photos</source>
        <translation>Darstellung der Fotos</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>Raster</translation>
    </message>
    <message>
        <source>List</source>
        <translation>Liste</translation>
    </message>
    <message>
        <source>Show All Photos</source>
        <translation>Alle Fotos zeigen</translation>
    </message>
    <message>
        <source>Hide File&amp;names in Browser</source>
        <translation>Datei&amp;namen ausblenden</translation>
    </message>
    <message>
        <source>Show File&amp;names in Browser</source>
        <translation>Datei&amp;namen einblenden</translation>
    </message>
    <message>
        <source>One photo is ready to be pasted</source>
        <translation>Ein Foto kann eingefügt werden</translation>
    </message>
    <message>
        <source>%1 photos are ready to be pasted</source>
        <translation>%1 Fotos können eingefügt werden</translation>
    </message>
    <message>
        <source>Switch to the Large Batch mode. Recommended if you work with many images.</source>
        <translation>Zum großen Stapel wechseln. Empfohlen, wenn Sie mit vielen Fotos arbeiten.</translation>
    </message>
    <message>
        <source>Switch to the Small Batch mode. Recommended if you work with fewer images.</source>
        <translation>Zum kleinen Stapel wechseln. Empfohlen, wenn Sie mit weniger Fotos arbeiten.</translation>
    </message>
    <message>
        <source>Switch to Large &amp;Batch Mode</source>
        <translation>Zum großen &amp;Stapel wechseln</translation>
    </message>
    <message>
        <source>Switch to Small &amp;Batch Mode</source>
        <translation>Zum kleinen &amp;Stapel wechseln</translation>
    </message>
    <message>
        <source>Small Batch mode: the photos as thumbnails</source>
        <translation>Kleiner Stapel: die Fotos als Miniaturen</translation>
    </message>
    <message>
        <source>Large Batch mode: the photos as a list</source>
        <translation>Großer Stapel: die Fotos als Liste</translation>
    </message>
    <message>
        <source>No photo has “%1” in its name</source>
        <translation>Kein Foto hat „%1“ im Namen</translation>
    </message>
</context>
<context>
    <name>plexa::ImageListView</name>
    <message>
        <source>Images</source>
        <translation>Fotos</translation>
    </message>
    <message>
        <source>The photos that are watermarked together. Drop photos and folders here.</source>
        <translation>Die Fotos, die zusammen mit Wasserzeichen versehen werden. Ziehen Sie Fotos und Ordner hierher.</translation>
    </message>
    <message>
        <source>Drag &amp; drop images here</source>
        <translation>Fotos hierher ziehen</translation>
    </message>
</context>
<context>
    <name>plexa::ImageMetadataPanel</name>
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
        <source>Clear All Metadata of %1</source>
        <translation>Alle Metadaten von %1 entfernen</translation>
    </message>
    <message>
        <source>Clear All but Copyright of %1</source>
        <translation>Alles außer Copyright von %1 entfernen</translation>
    </message>
    <message>
        <source>Clear All but Copyright and Contact of %1</source>
        <translation>Alles außer Copyright und Kontakt von %1 entfernen</translation>
    </message>
    <message>
        <source>Clear GPS Data of %1</source>
        <translation>GPS-Daten von %1 entfernen</translation>
    </message>
    <message>
        <source>Clear IPTC Data of %1</source>
        <translation>IPTC-Daten von %1 entfernen</translation>
    </message>
    <message>
        <source>Clear EXIF Data of %1</source>
        <translation>EXIF-Daten von %1 entfernen</translation>
    </message>
    <message>
        <source>Copies get no metadata of the photos</source>
        <translation>Kopien erhalten keine Metadaten der Fotos</translation>
    </message>
    <message>
        <source>Copies keep the copyright notice alone</source>
        <translation>Kopien behalten nur den Copyright-Vermerk</translation>
    </message>
    <message>
        <source>Copies keep copyright, creator and contact</source>
        <translation>Kopien behalten Copyright, Urheber und Kontakt</translation>
    </message>
    <message>
        <source>Copies do not tell where the photos were taken</source>
        <translation>Kopien verraten nicht, wo die Fotos aufgenommen wurden</translation>
    </message>
    <message>
        <source>Copies get no title, caption, keywords, creator or copyright of IPTC</source>
        <translation>Kopien erhalten keinen Titel, keine Beschreibung, keine Stichwörter, keinen Urheber und kein Copyright aus IPTC</translation>
    </message>
    <message>
        <source>Copies get no facts of camera, lens and exposure</source>
        <translation>Kopien erhalten keine Angaben zu Kamera, Objektiv und Belichtung</translation>
    </message>
    <message>
        <source>Image Metadata</source>
        <translation>Bildmetadaten</translation>
    </message>
    <message>
        <source>&amp;Edit EXIF fields</source>
        <translation>EXIF-Felder &amp;bearbeiten</translation>
    </message>
    <message>
        <source>Protects what the camera has written from being changed by mistake</source>
        <translation>Schützt die Angaben der Kamera vor versehentlichen Änderungen</translation>
    </message>
    <message>
        <source>Show on &amp;Map</source>
        <translation>Auf der &amp;Karte zeigen</translation>
    </message>
    <message>
        <source>&amp;Clear</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Remove metadata from the selected photos; this can be undone</source>
        <translation>Metadaten der ausgewählten Fotos entfernen; lässt sich rückgängig machen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message numerus="yes">
        <source>%n photos</source>
        <translation>
            <numerusform>%n Foto</numerusform>
            <numerusform>%n Fotos</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 (still being read)</source>
        <translation>%1 (wird noch gelesen)</translation>
    </message>
    <message>
        <source>Select photos that were taken at one known position</source>
        <translation>Wählen Sie Fotos aus, die an einer einzigen bekannten Position aufgenommen wurden</translation>
    </message>
    <message>
        <source>The photos were taken at several positions.</source>
        <translation>Die Fotos wurden an verschiedenen Positionen aufgenommen.</translation>
    </message>
    <message>
        <source>The position is not known.</source>
        <translation>Die Position ist nicht bekannt.</translation>
    </message>
    <message>
        <source>Open %1 in the browser</source>
        <translation>%1 im Browser öffnen</translation>
    </message>
    <message>
        <source>Help on metadata</source>
        <translation>Hilfe zu Metadaten</translation>
    </message>
    <message>
        <source>Explain metadata (F1)</source>
        <translation>Metadaten erklären (F1)</translation>
    </message>
</context>
<context>
    <name>plexa::ImageSet</name>
    <message>
        <source>%1 images are currently imported. You cannot work with over %2 images in the Small Batch mode, because this may slow down your computer. Please remove some images if you need to switch.</source>
        <translation>Zurzeit sind %1 Fotos importiert. Im kleinen Stapel können Sie nicht mit mehr als %2 Fotos arbeiten, weil das Ihren Computer verlangsamen kann. Entfernen Sie bitte einige Fotos, wenn Sie wechseln möchten.</translation>
    </message>
    <message>
        <source>Too many images for the Small Batch mode!</source>
        <translation>Zu viele Fotos für den kleinen Stapel!</translation>
    </message>
    <message>
        <source>Sorry, could not load the image %1. The format is not supported.</source>
        <translation>Das Foto %1 konnte leider nicht geladen werden. Das Format wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>Unsupported image file</source>
        <translation>Nicht unterstützte Bilddatei</translation>
    </message>
</context>
<context>
    <name>plexa::ImageViewController</name>
    <message>
        <source>Select an image in the browser to preview</source>
        <translation>Wählen Sie unten ein Foto für die Vorschau aus</translation>
    </message>
    <message>
        <source>Loading %1…</source>
        <translation>%1 wird geladen…</translation>
    </message>
    <message>
        <source>%1, %2x%3</source>
        <translation>%1, %2 × %3</translation>
    </message>
    <message>
        <source>Select one applied preset to see it.</source>
        <translation>Wählen Sie eine angewendete Vorgabe aus, um sie zu sehen.</translation>
    </message>
</context>
<context>
    <name>plexa::ImageWell</name>
    <message>
        <source>Choose Picture…</source>
        <translation>Bild auswählen…</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einfügen</translation>
    </message>
</context>
<context>
    <name>plexa::KeyedArchive</name>
    <message>
        <source>it would be larger than %1 MB</source>
        <translation>die Datei wäre größer als %1 MB</translation>
    </message>
    <message>
        <source>there is not enough memory for it</source>
        <translation>der Speicher reicht dafür nicht aus</translation>
    </message>
    <message>
        <source>it would hold more than can be read again</source>
        <translation>die Datei würde mehr enthalten, als sich wieder lesen lässt</translation>
    </message>
    <message>
        <source>it is no archive of objects</source>
        <translation>es ist kein Archiv von Objekten</translation>
    </message>
</context>
<context>
    <name>plexa::KeywordsField</name>
    <message>
        <source>Keyword “%1”</source>
        <translation>Stichwort „%1“</translation>
    </message>
    <message>
        <source>Remove the keyword “%1”</source>
        <translation>Stichwort „%1“ entfernen</translation>
    </message>
    <message>
        <source>New keywords</source>
        <translation>Neue Stichwörter</translation>
    </message>
    <message>
        <source>Add keywords to all selected photos; press Return or a comma after each</source>
        <translation>Fügt allen ausgewählten Fotos Stichwörter hinzu; schließen Sie jedes mit der Eingabetaste oder einem Komma ab</translation>
    </message>
    <message>
        <source>Add keywords</source>
        <translation>Stichwörter hinzufügen</translation>
    </message>
</context>
<context>
    <name>plexa::LicenseDialog</name>
    <message>
        <source>Text of the license</source>
        <translation>Text der Lizenz</translation>
    </message>
    <message>
        <source>License of %1</source>
        <translation>Lizenz von %1</translation>
    </message>
    <message>
        <source>%1 is free software: you may use, study, share and change it under the terms of the GNU General Public License, version 3 or any later version. It comes without any warranty.</source>
        <translation>%1 ist freie Software: Sie dürfen das Programm nach den Bedingungen der GNU General Public License, Version 3 oder einer späteren, benutzen, untersuchen, weitergeben und verändern. Es gibt keinerlei Gewährleistung.</translation>
    </message>
    <message>
        <source>&amp;Agree</source>
        <translation>&amp;Zustimmen</translation>
    </message>
    <message>
        <source>Start %1; this question does not come again</source>
        <translation>%1 starten; diese Frage kommt nicht wieder</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Quit without starting %1</source>
        <translation>Beenden, ohne %1 zu starten</translation>
    </message>
</context>
<context>
    <name>plexa::MainWindow</name>
    <message>
        <source>Drop photos or folders here</source>
        <translation>Ziehen Sie Fotos oder Ordner hierher</translation>
    </message>
    <message>
        <source>Your originals stay as they are. The grid holds up to %1 photos, the list any number.</source>
        <translation>Ihre Originale bleiben, wie sie sind. Das Raster fasst bis zu %1 Fotos, die Liste beliebig viele.</translation>
    </message>
    <message>
        <source>Save Selected…</source>
        <translation>Auswahl speichern…</translation>
    </message>
    <message>
        <source>Save All…</source>
        <translation>Alle speichern…</translation>
    </message>
    <message>
        <source>Not all copies could be written</source>
        <translation>Nicht alle Kopien konnten geschrieben werden</translation>
    </message>
    <message>
        <source>
  ...and %1 more...</source>
        <translation>
  … und %1 weitere …</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Positions copied; select photos to paste them</source>
        <translation>Positionen kopiert; wählen Sie Fotos aus, um sie einzufügen</translation>
    </message>
    <message>
        <source>Position copied; select photos to paste it</source>
        <translation>Position kopiert; wählen Sie Fotos aus, um sie einzufügen</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>Puts watermarks on photographs in batches.

Copyright: the %1 authors. Free software under the GNU General Public License, version 3 or later; it comes without any warranty.</source>
        <translation>Versieht Fotos stapelweise mit Wasserzeichen.

Copyright: die Autoren von %1. Freie Software unter der GNU General Public License, Version 3 oder neuer; ohne jede Gewährleistung.</translation>
    </message>
    <message>
        <source>Positions pasted</source>
        <translation>Positionen eingefügt</translation>
    </message>
</context>
<context>
    <name>plexa::MessageBoxAlerts</name>
    <message>
        <source>Do not ask me again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
</context>
<context>
    <name>plexa::MetadataEditing</name>
    <message>
        <source>Edit %1</source>
        <translation>%1 bearbeiten</translation>
    </message>
    <message>
        <source>Edit Keywords</source>
        <translation>Stichwörter bearbeiten</translation>
    </message>
    <message>
        <source>Clear Metadata</source>
        <translation>Metadaten entfernen</translation>
    </message>
</context>
<context>
    <name>plexa::MetadataFieldRow</name>
    <message>
        <source>A fact of the file; it cannot be edited</source>
        <translation>Eine Eigenschaft der Datei; sie kann nicht bearbeitet werden</translation>
    </message>
    <message>
        <source>Press Return to change all selected photos</source>
        <translation>Drücken Sie die Eingabetaste, um alle ausgewählten Fotos zu ändern</translation>
    </message>
    <message>
        <source>A date such as 2024-12-31 23:59:59; press Return to change all selected photos</source>
        <translation>Ein Datum wie 2024-12-31 23:59:59; drücken Sie die Eingabetaste, um alle ausgewählten Fotos zu ändern</translation>
    </message>
    <message>
        <source>Pick the date</source>
        <translation>Datum auswählen</translation>
    </message>
    <message>
        <source>Pick the date; the time of day stays</source>
        <translation>Datum auswählen; die Uhrzeit bleibt</translation>
    </message>
    <message>
        <source>Press Return to change all selected photos, Shift+Return for a new line</source>
        <translation>Drücken Sie die Eingabetaste, um alle ausgewählten Fotos zu ändern, Umschalt+Eingabe für eine neue Zeile</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>The choice changes all selected photos</source>
        <translation>Die Auswahl ändert alle ausgewählten Fotos</translation>
    </message>
    <message>
        <source>Multiple values</source>
        <translation>Mehrere Werte</translation>
    </message>
</context>
<context>
    <name>plexa::OutputNaming</name>
    <message>
        <source>The file exists:
  %1</source>
        <translation>Die Datei ist vorhanden:
  %1</translation>
    </message>
    <message>
        <source>An overwritten file cannot be recovered. Consider generating a unique filename instead.</source>
        <translation>Eine überschriebene Datei lässt sich nicht wiederherstellen. Erwägen Sie stattdessen einen eindeutigen Dateinamen.</translation>
    </message>
    <message>
        <source>Use unique filename</source>
        <translation>Eindeutiger Dateiname</translation>
    </message>
    <message>
        <source>Overwrite file</source>
        <translation>Datei überschreiben</translation>
    </message>
    <message>
        <source>Skip file</source>
        <translation>Datei überspringen</translation>
    </message>
</context>
<context>
    <name>plexa::PictureFailures</name>
    <message>
        <source>this kind of %1 cannot be read</source>
        <translation>diese Art von %1 kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>the picture is too large: %1 x %2 pixels, at most %3 megapixels can be read</source>
        <translation>das Bild ist zu groß: %1 x %2 Pixel, höchstens %3 Megapixel können gelesen werden</translation>
    </message>
    <message>
        <source>the file asks for too much memory</source>
        <translation>die Datei verlangt zu viel Speicher</translation>
    </message>
    <message>
        <source>the picture is too large: %1 x %2 pixels need %3 MB of memory, %4 MB are allowed</source>
        <translation>das Bild ist zu groß: %1 x %2 Pixel benötigen %3 MB Speicher, erlaubt sind %4 MB</translation>
    </message>
    <message>
        <source>it cannot be read: %1</source>
        <translation>nicht lesbar: %1</translation>
    </message>
    <message>
        <source>it cannot be written: %1</source>
        <translation>nicht schreibbar: %1</translation>
    </message>
    <message>
        <source>the picture could not be encoded as %1</source>
        <translation>das Bild konnte nicht als %1 kodiert werden</translation>
    </message>
    <message>
        <source>its colors could not be reduced to those of a palette (error %1)</source>
        <translation>die Farben ließen sich nicht auf die einer Palette verringern (Fehler %1)</translation>
    </message>
    <message>
        <source>the picture is too large for a %1 file</source>
        <translation>das Bild ist zu groß für eine %1-Datei</translation>
    </message>
    <message>
        <source>files of type %1 cannot be written</source>
        <translation>Dateien vom Typ %1 können nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>die Datei ist leer</translation>
    </message>
    <message>
        <source>not a picture that can be read</source>
        <translation>kein lesbares Bild</translation>
    </message>
    <message>
        <source>it contains no camera raw photo of a known kind</source>
        <translation>die Datei enthält kein Raw-Foto einer bekannten Art</translation>
    </message>
    <message>
        <source>it lacks data of the camera&apos;s sensor</source>
        <translation>es fehlen Daten des Kamerasensors</translation>
    </message>
    <message>
        <source>the file is truncated</source>
        <translation>die Datei ist unvollständig</translation>
    </message>
    <message>
        <source>the file lacks the last of its scans; the finest step of the detail is missing</source>
        <translation>der Datei fehlt der letzte Durchgang; die feinste Stufe der Einzelheiten fehlt</translation>
    </message>
    <message>
        <source>the picture may be damaged: its data contain bytes that belong to no part of it</source>
        <translation>das Bild ist möglicherweise beschädigt: seine Daten enthalten Bytes, die zu keinem Teil gehören</translation>
    </message>
    <message>
        <source>the picture data are damaged</source>
        <translation>die Bilddaten sind beschädigt</translation>
    </message>
    <message>
        <source>there is not enough memory for the picture</source>
        <translation>der Speicher reicht für das Bild nicht aus</translation>
    </message>
    <message>
        <source>the file was changed while it was read</source>
        <translation>die Datei wurde beim Lesen geändert</translation>
    </message>
    <message>
        <source>its EXIF data are too long for a JPEG file</source>
        <translation>die EXIF-Daten sind zu lang für eine JPEG-Datei</translation>
    </message>
</context>
<context>
    <name>plexa::PreferencesDialog</name>
    <message>
        <source>Watermarks</source>
        <translation>Wasserzeichen</translation>
    </message>
    <message>
        <source>&amp;Apply the presets of the last time at start</source>
        <translation>Beim Start die Vorgaben vom letzten Mal &amp;anwenden</translation>
    </message>
    <message>
        <source>The presets that are applied when the window closes are applied again at the next start</source>
        <translation>Die beim Schließen des Fensters angewendeten Vorgaben werden beim nächsten Start wieder angewendet</translation>
    </message>
    <message>
        <source>&amp;Draw all applied presets on one copy</source>
        <translation>Alle angewendeten Vorgaben auf eine Kopie &amp;zeichnen</translation>
    </message>
    <message>
        <source>One copy with all watermarks, instead of one copy for each of them</source>
        <translation>Eine Kopie mit allen Wasserzeichen statt je einer Kopie für jedes</translation>
    </message>
    <message>
        <source>Copies</source>
        <translation>Kopien</translation>
    </message>
    <message>
        <source>Save all copies with the &amp;same saving preset</source>
        <translation>Alle Kopien mit derselben &amp;Speichervorgabe speichern</translation>
    </message>
    <message>
        <source>Saving presets that are assigned to watermark presets are ignored</source>
        <translation>Speichervorgaben, die Wasserzeichen-Vorgaben zugeordnet sind, werden nicht beachtet</translation>
    </message>
    <message>
        <source>&amp;Keep the date of the original file</source>
        <translation>&amp;Datum der Originaldatei behalten</translation>
    </message>
    <message>
        <source>A copy gets the date of the photo&apos;s file instead of today&apos;s</source>
        <translation>Eine Kopie erhält das Datum der Datei des Fotos statt des heutigen</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Show a thumbnail without watermarks &amp;under the pointer</source>
        <translation>&amp;Unter dem Mauszeiger die Miniatur ohne Wasserzeichen zeigen</translation>
    </message>
    <message>
        <source>The thumbnail under the pointer is shown as the original is</source>
        <translation>Die Miniatur unter dem Mauszeiger erscheint wie das Original</translation>
    </message>
    <message>
        <source>Ask for &amp;feedback now and then</source>
        <translation>Gelegentlich nach meiner &amp;Meinung fragen</translation>
    </message>
    <message>
        <source>Every seventh time when Plexa quits</source>
        <translation>Bei jedem siebten Beenden von Plexa</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Check for updates &amp;once a day</source>
        <translation>&amp;Einmal am Tag nach Updates suchen</translation>
    </message>
    <message>
        <source>Asks the web server of the maker for the newest version; sends nothing about you</source>
        <translation>Fragt den Webserver des Herstellers nach der neuesten Version; sendet nichts über Sie</translation>
    </message>
    <message>
        <source>Help on preferences</source>
        <translation>Hilfe zu den Einstellungen</translation>
    </message>
    <message>
        <source>Explain the preferences (F1)</source>
        <translation>Die Einstellungen erklären (F1)</translation>
    </message>
</context>
<context>
    <name>plexa::PresetCommands</name>
    <message>
        <source>Presets import failed</source>
        <translation>Import der Vorgaben fehlgeschlagen</translation>
    </message>
    <message>
        <source>There is not enough memory for &quot;%1&quot;.</source>
        <translation>Der Speicher reicht für „%1“ nicht aus.</translation>
    </message>
    <message>
        <source>Import Presets</source>
        <translation>Vorgaben importieren</translation>
    </message>
    <message>
        <source>One preset of &quot;%1&quot; was added to yours.</source>
        <translation>Eine Vorgabe aus „%1“ wurde hinzugefügt.</translation>
    </message>
    <message numerus="yes">
        <source>%n presets of &quot;%1&quot; were added to yours.</source>
        <translation>
            <numerusform>%n Vorgabe aus „%1“ wurde hinzugefügt.</numerusform>
            <numerusform>%n Vorgaben aus „%1“ wurden hinzugefügt.</numerusform>
        </translation>
    </message>
    <message>
        <source>Presets imported</source>
        <translation>Vorgaben importiert</translation>
    </message>
    <message>
        <source>Save as New Preset</source>
        <translation>Als neue Vorgabe speichern</translation>
    </message>
    <message>
        <source>Load Preset</source>
        <translation>Vorgabe laden</translation>
    </message>
    <message>
        <source>Update Preset</source>
        <translation>Vorgabe aktualisieren</translation>
    </message>
    <message>
        <source>Cannot save the presets</source>
        <translation>Die Vorgaben können nicht gespeichert werden</translation>
    </message>
</context>
<context>
    <name>plexa::PresetEdits</name>
    <message>
        <source>Add Preset</source>
        <translation>Vorgabe hinzufügen</translation>
    </message>
    <message>
        <source>Duplicate Preset</source>
        <translation>Vorgabe duplizieren</translation>
    </message>
    <message>
        <source>Duplicate Presets</source>
        <translation>Vorgaben duplizieren</translation>
    </message>
    <message>
        <source>Remove Preset</source>
        <translation>Vorgabe entfernen</translation>
    </message>
    <message>
        <source>Remove Presets</source>
        <translation>Vorgaben entfernen</translation>
    </message>
    <message>
        <source>Move Presets</source>
        <translation>Vorgaben verschieben</translation>
    </message>
    <message>
        <source>Edit Preset</source>
        <translation>Vorgabe bearbeiten</translation>
    </message>
</context>
<context>
    <name>plexa::PresetListView</name>
    <message>
        <source>No name contains the text</source>
        <translation>Kein Name enthält den Text</translation>
    </message>
    <message numerus="yes">
        <source>%n presets</source>
        <translation>
            <numerusform>%n Vorgabe</numerusform>
            <numerusform>%n Vorgaben</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>plexa::PresetRowsModel</name>
    <message>
        <source>“%1” does not say how the copies are named</source>
        <translation>„%1“ legt nicht fest, wie die Kopien heißen</translation>
    </message>
    <message>
        <source>The quality of “%1” is not between %2 and %3 %</source>
        <translation>Die Qualität von „%1“ liegt nicht zwischen %2 und %3 %</translation>
    </message>
</context>
<context>
    <name>plexa::PresetsManagerWindow</name>
    <message>
        <source>Watermark Presets Management</source>
        <translation>Wasserzeichen-Vorgaben verwalten</translation>
    </message>
    <message>
        <source>Saving Presets Management</source>
        <translation>Speichervorgaben verwalten</translation>
    </message>
    <message>
        <source>Add Preset</source>
        <translation>Vorgabe hinzufügen</translation>
    </message>
    <message>
        <source>Add a new preset below the selected ones</source>
        <translation>Unter den ausgewählten eine neue Vorgabe hinzufügen</translation>
    </message>
    <message>
        <source>Remove Presets</source>
        <translation>Vorgaben entfernen</translation>
    </message>
    <message>
        <source>Remove the selected presets</source>
        <translation>Die ausgewählten Vorgaben entfernen</translation>
    </message>
    <message>
        <source>Duplicate Presets</source>
        <translation>Vorgaben duplizieren</translation>
    </message>
    <message>
        <source>Copy the selected presets</source>
        <translation>Die ausgewählten Vorgaben kopieren</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move the selected presets up</source>
        <translation>Die ausgewählten Vorgaben nach oben verschieben</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Move the selected presets down</source>
        <translation>Die ausgewählten Vorgaben nach unten verschieben</translation>
    </message>
    <message>
        <source>Import…</source>
        <translation>Importieren…</translation>
    </message>
    <message>
        <source>Add the presets of a file</source>
        <translation>Die Vorgaben einer Datei hinzufügen</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren…</translation>
    </message>
    <message>
        <source>Write the selected presets to a file</source>
        <translation>Die ausgewählten Vorgaben in eine Datei schreiben</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Show only some presets</source>
        <translation>Nur einige Vorgaben zeigen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Search presets</source>
        <translation>Vorgaben durchsuchen</translation>
    </message>
    <message>
        <source>Show only presets whose names contain this text</source>
        <translation>Nur Vorgaben zeigen, deren Name diesen Text enthält</translation>
    </message>
    <message>
        <source>Watermark presets</source>
        <translation>Wasserzeichen-Vorgaben</translation>
    </message>
    <message>
        <source>Saving presets</source>
        <translation>Speichervorgaben</translation>
    </message>
    <message>
        <source>All presets of this kind. Drag them into another order; names in red belong to presets that cannot be used.</source>
        <translation>Alle Vorgaben dieser Art. Ziehen Sie sie in eine andere Reihenfolge; rote Namen gehören zu Vorgaben, die nicht benutzt werden können.</translation>
    </message>
    <message>
        <source>No presets yet</source>
        <translation>Noch keine Vorgaben</translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>&amp;Name</translation>
    </message>
    <message>
        <source>Name of the preset</source>
        <translation>Name der Vorgabe</translation>
    </message>
    <message>
        <source>The name in lists and menus</source>
        <translation>Der Name in Listen und Menüs</translation>
    </message>
    <message>
        <source>No preset is selected.</source>
        <translation>Keine Vorgabe ist ausgewählt.</translation>
    </message>
    <message>
        <source>Import Examples</source>
        <translation>Beispiele importieren</translation>
    </message>
    <message>
        <source>Add the presets that come with the program</source>
        <translation>Die mitgelieferten Vorgaben hinzufügen</translation>
    </message>
    <message>
        <source>Watermark presets (*.pxwpr *.xml)</source>
        <translation>Wasserzeichen-Vorgaben (*.pxwpr *.xml)</translation>
    </message>
    <message>
        <source>Saving presets (*.pxspr *.xml)</source>
        <translation>Speichervorgaben (*.pxspr *.xml)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Export presets</source>
        <translation>Vorgaben exportieren</translation>
    </message>
    <message>
        <source>The presets are not exported</source>
        <translation>Die Vorgaben wurden nicht exportiert</translation>
    </message>
    <message>
        <source>Import Presets</source>
        <translation>Vorgaben importieren</translation>
    </message>
    <message numerus="yes">
        <source>%n presets are selected. You edit “%1”.</source>
        <translation>
            <numerusform>%n Vorgabe ist ausgewählt. Sie bearbeiten „%1“.</numerusform>
            <numerusform>%n Vorgaben sind ausgewählt. Sie bearbeiten „%1“.</numerusform>
        </translation>
    </message>
    <message>
        <source>Help on presets</source>
        <translation>Hilfe zu Vorgaben</translation>
    </message>
    <message>
        <source>Explain presets (F1)</source>
        <translation>Vorgaben erklären (F1)</translation>
    </message>
</context>
<context>
    <name>plexa::PresetsPanel</name>
    <message>
        <source>Watermark mode</source>
        <translation>Wasserzeichen-Modus</translation>
    </message>
    <message>
        <source>Single</source>
        <translation>Einzeln</translation>
    </message>
    <message>
        <source>Presets</source>
        <translation>Vorgaben</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>Laden</translation>
    </message>
    <message>
        <source>Load a Preset</source>
        <translation>Vorgabe laden</translation>
    </message>
    <message>
        <source>Edit a copy of a preset as the single watermark</source>
        <translation>Die Kopie einer Vorgabe als einzelnes Wasserzeichen bearbeiten</translation>
    </message>
    <message>
        <source>Save as New</source>
        <translation>Neu speichern</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>No presets yet</source>
        <translation>Noch keine Vorgaben</translation>
    </message>
    <message>
        <source>Select a preset to edit it here.</source>
        <translation>Wählen Sie eine Vorgabe aus, um sie hier zu bearbeiten.</translation>
    </message>
    <message>
        <source>Applied presets</source>
        <translation>Angewendete Vorgaben</translation>
    </message>
    <message>
        <source>The presets that are drawn on the photos, in this order. Drag them into another order; double-click one to edit it.</source>
        <translation>Die Vorgaben, die auf die Fotos gezeichnet werden, in dieser Reihenfolge. Ziehen Sie sie in eine andere Reihenfolge; doppelklicken Sie auf eine, um sie zu bearbeiten.</translation>
    </message>
    <message>
        <source>No preset is applied yet.
Double-click one below, or drag it here.</source>
        <translation>Noch ist keine Vorgabe angewendet.
Doppelklicken Sie unten auf eine oder ziehen Sie sie hierher.</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>“%1” is applied already</source>
        <translation>„%1“ ist bereits angewendet</translation>
    </message>
    <message>
        <source>The single watermark is now a copy of “%1”</source>
        <translation>Das einzelne Wasserzeichen ist jetzt eine Kopie von „%1“</translation>
    </message>
    <message>
        <source>“%1” was added to all presets</source>
        <translation>„%1“ wurde zu allen Vorgaben hinzugefügt</translation>
    </message>
    <message>
        <source>“%1” is now like the single watermark</source>
        <translation>„%1“ entspricht jetzt dem einzelnen Wasserzeichen</translation>
    </message>
    <message>
        <source>Upda&amp;te “%1”</source>
        <translation>„%1“ ak&amp;tualisieren</translation>
    </message>
    <message>
        <source>Give “%1” the settings of the single watermark</source>
        <translation>Der Vorgabe „%1“ die Einstellungen des einzelnen Wasserzeichens geben</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>“%1” (not applied)</source>
        <translation>„%1“ (nicht angewendet)</translation>
    </message>
    <message>
        <source>All on one copy</source>
        <translation>Alle auf eine Kopie</translation>
    </message>
    <message>
        <source>Draw all applied presets on one copy of a photo, instead of making a copy for each</source>
        <translation>Alle angewendeten Vorgaben auf eine Kopie des Fotos zeichnen, statt für jede eine eigene zu erstellen</translation>
    </message>
</context>
<context>
    <name>plexa::PresetsStore</name>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weitere</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>Cannot read the presets file</source>
        <translation>Die Datei der Vorgaben kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>The presets file is generated by a later application version and will be replaced.</source>
        <translation>Die Datei der Vorgaben stammt von einer neueren Programmversion und wird ersetzt.</translation>
    </message>
    <message>
        <source>The presets file is invalid and cannot be read. It will be replaced with a new file.</source>
        <translation>Die Datei der Vorgaben ist ungültig und kann nicht gelesen werden. Sie wird durch eine neue Datei ersetzt.</translation>
    </message>
    <message>
        <source> The original file backup has been saved in &quot;%1&quot;.</source>
        <translation> Die ursprüngliche Datei wurde als „%1“ gesichert.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be backed up</source>
        <translation>„%1“ kann nicht gesichert werden</translation>
    </message>
    <message>
        <source>Cannot save the presets</source>
        <translation>Die Vorgaben können nicht gespeichert werden</translation>
    </message>
    <message>
        <source>Your preset changes will be lost when you quit: %1.</source>
        <translation>Die Änderungen an Ihren Vorgaben gehen beim Beenden verloren: %1.</translation>
    </message>
    <message>
        <source>Presets import failed</source>
        <translation>Import der Vorgaben fehlgeschlagen</translation>
    </message>
    <message>
        <source>The presets file was generated by a later application version.</source>
        <translation>Die Datei der Vorgaben stammt von einer neueren Programmversion.</translation>
    </message>
    <message>
        <source>The presets file has a wrong format.</source>
        <translation>Die Datei der Vorgaben hat ein falsches Format.</translation>
    </message>
    <message>
        <source>A later application version has written the file; what that version added to it is not read.</source>
        <translation>Eine neuere Programmversion hat die Datei geschrieben; was diese Version hinzugefügt hat, wird nicht gelesen.</translation>
    </message>
    <message>
        <source>Not all of the file could be read: %1.</source>
        <translation>Die Datei konnte nicht vollständig gelesen werden: %1.</translation>
    </message>
    <message>
        <source>Add Examples</source>
        <translation>Beispiele hinzufügen</translation>
    </message>
    <message>
        <source>There is not enough memory for its presets.</source>
        <translation>Der Speicher reicht für die Vorgaben nicht aus.</translation>
    </message>
    <message>
        <source>presets</source>
        <extracomment>The name of a folder in resources, which has other examples for each language.</extracomment>
        <translation>presets-de</translation>
    </message>
</context>
<context>
    <name>plexa::PreviewPane</name>
    <message>
        <source>Help on the preview</source>
        <translation>Hilfe zur Vorschau</translation>
    </message>
    <message>
        <source>Explain the preview</source>
        <translation>Die Vorschau erklären</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Copy, paste or reset the positions to which watermarks were dragged</source>
        <translation>Positionen, an die Wasserzeichen gezogen wurden, kopieren, einfügen oder zurücksetzen</translation>
    </message>
    <message>
        <source>Zoom of the preview</source>
        <translation>Zoom der Vorschau</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>The photo with its watermarks. Return selects the watermark, the arrow keys move it.</source>
        <translation>Das Foto mit seinen Wasserzeichen. Die Eingabetaste wählt das Wasserzeichen aus, die Pfeiltasten verschieben es.</translation>
    </message>
    <message>
        <source>Zoom of the preview, from the whole photo to its full size</source>
        <translation>Zoom der Vorschau, vom ganzen Foto bis zur vollen Größe</translation>
    </message>
    <message>
        <source>Help-ImageView</source>
        <extracomment>The name of a page in resources/help, which has another one for each language.</extracomment>
        <translation>Help-ImageView_de</translation>
    </message>
</context>
<context>
    <name>plexa::PromisedFiles</name>
    <message>
        <source>%1: the program that received the drop did not wait for the files</source>
        <translation>%1: das Zielprogramm hat nicht auf die Dateien gewartet</translation>
    </message>
</context>
<context>
    <name>plexa::PropertyList</name>
    <message>
        <source>it is larger than %1 MB</source>
        <translation>die Datei ist größer als %1 MB</translation>
    </message>
    <message>
        <source>it holds more than can be read</source>
        <translation>die Datei enthält mehr, als gelesen werden kann</translation>
    </message>
    <message>
        <source>it is damaged</source>
        <translation>die Datei ist beschädigt</translation>
    </message>
    <message>
        <source>it is in the unknown encoding &quot;%1&quot;</source>
        <translation>die Datei hat die unbekannte Kodierung „%1“</translation>
    </message>
    <message>
        <source>its document type is too long</source>
        <translation>ihr Dokumenttyp ist zu lang</translation>
    </message>
    <message>
        <source>an element has more than %1 attributes</source>
        <translation>ein Element hat mehr als %1 Attribute</translation>
    </message>
    <message>
        <source>more than %1 namespaces are declared at once</source>
        <translation>mehr als %1 Namensräume sind gleichzeitig deklariert</translation>
    </message>
    <message>
        <source>it does not hold a list of texts</source>
        <translation>die Datei enthält keine Liste von Texten</translation>
    </message>
</context>
<context>
    <name>plexa::SaveMultiplePanel</name>
    <message>
        <source>%1 (the same name again)</source>
        <translation>%1 (noch einmal derselbe Name)</translation>
    </message>
    <message>
        <source>%1 (is the original)</source>
        <translation>%1 (ist das Original)</translation>
    </message>
    <message>
        <source>%1 (exists already)</source>
        <translation>%1 (bereits vorhanden)</translation>
    </message>
    <message>
        <source>Recreate the folders of the originals in it</source>
        <translation>Darin die Ordner der Originale nachbilden</translation>
    </message>
    <message>
        <source>Saving Presets ▾</source>
        <translation>Speichervorgaben ▾</translation>
    </message>
    <message>
        <source>Save Watermarked Copies</source>
        <translation>Kopien mit Wasserzeichen speichern</translation>
    </message>
    <message>
        <source>The size is estimated from a few copies that are made for that</source>
        <translation>Die Größe wird anhand einiger Kopien geschätzt, die dafür erstellt werden</translation>
    </message>
    <message>
        <source>Where the copies go</source>
        <translation>Wohin die Kopien gespeichert werden</translation>
    </message>
    <message>
        <source>Beside the originals</source>
        <translation>Neben den Originalen</translation>
    </message>
    <message>
        <source>In one folder</source>
        <translation>In einem Ordner</translation>
    </message>
    <message>
        <source>Save copies</source>
        <translation>Kopien speichern</translation>
    </message>
    <message>
        <source>Choose the folder</source>
        <translation>Ordner auswählen</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Copies of photos in subfolders go into subfolders of the same names</source>
        <translation>Kopien von Fotos aus Unterordnern kommen in Unterordner mit denselben Namen</translation>
    </message>
    <message>
        <source>Choose the folder whose subfolders are recreated</source>
        <translation>Den Ordner auswählen, dessen Unterordner nachgebildet werden</translation>
    </message>
    <message>
        <source>Starting from</source>
        <translation>Ausgehend von</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen…</translation>
    </message>
    <message>
        <source>Folders above</source>
        <translation>Übergeordnete Ordner</translation>
    </message>
    <message>
        <source>Choose one of the folders above this one</source>
        <translation>Einen der übergeordneten Ordner auswählen</translation>
    </message>
    <message>
        <source>There is no folder above</source>
        <translation>Es gibt keinen übergeordneten Ordner</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Saving Presets</source>
        <translation>Speichervorgaben</translation>
    </message>
    <message>
        <source>Load these settings from a saving preset, or keep them as one</source>
        <translation>Diese Einstellungen aus einer Speichervorgabe laden oder als eine sichern</translation>
    </message>
    <message>
        <source>the root folder</source>
        <translation>das Wurzelverzeichnis</translation>
    </message>
    <message>
        <source>Folder of the Copies</source>
        <translation>Ordner für die Kopien</translation>
    </message>
    <message>
        <source>Start Folder</source>
        <translation>Ausgangsordner</translation>
    </message>
    <message>
        <source>Load from preset</source>
        <translation>Aus Vorgabe laden</translation>
    </message>
    <message>
        <source>Save as new preset</source>
        <translation>Als neue Vorgabe speichern</translation>
    </message>
    <message>
        <source>Saved preset</source>
        <translation>Gespeicherte Vorgabe</translation>
    </message>
    <message>
        <source>Manage presets</source>
        <translation>Vorgaben verwalten</translation>
    </message>
    <message>
        <source>1 copy</source>
        <translation>1 Kopie</translation>
    </message>
    <message numerus="yes">
        <source>%n copies</source>
        <translation>
            <numerusform>%n Kopie</numerusform>
            <numerusform>%n Kopien</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, about %2</source>
        <translation>%1, etwa %2</translation>
    </message>
    <message>
        <source>%1; their size is being estimated…</source>
        <translation>%1; die Größe wird geschätzt…</translation>
    </message>
    <message>
        <source>Missing the destination directory</source>
        <translation>Der Zielordner fehlt</translation>
    </message>
    <message>
        <source>Please specify the directory where the image files should be saved</source>
        <translation>Bitte geben Sie den Ordner an, in dem die Kopien gespeichert werden sollen</translation>
    </message>
    <message>
        <source>Help on saving</source>
        <translation>Hilfe zum Speichern</translation>
    </message>
    <message>
        <source>Explain saving (F1)</source>
        <translation>Das Speichern erklären (F1)</translation>
    </message>
</context>
<context>
    <name>plexa::Saving</name>
    <message>
        <source>
  ...and %1 more...</source>
        <translation>
  … und %1 weitere …</translation>
    </message>
    <message>
        <source>Failed to save %1 image(s)!</source>
        <translation>%1 Foto(s) konnten nicht gespeichert werden!</translation>
    </message>
    <message>
        <source>Sorry, could not save the following image(s). Possibly the original image format is not supported, or missing write permissions on the destination:
%1</source>
        <translation>Die folgenden Fotos konnten leider nicht gespeichert werden. Möglicherweise wird das Format des Originals nicht unterstützt, oder es fehlt die Berechtigung, am Ziel zu schreiben:
%1</translation>
    </message>
    <message>
        <source>Saving images...</source>
        <translation>Fotos werden gespeichert…</translation>
    </message>
    <message>
        <source>Saving image %1 out of %2:
%3</source>
        <translation>Foto %1 von %2 wird gespeichert:
%3</translation>
    </message>
    <message>
        <source>Missing the filename specification!</source>
        <translation>Die Angabe des Dateinamens fehlt!</translation>
    </message>
    <message>
        <source>Will use the original filename.</source>
        <translation>Der ursprüngliche Dateiname wird verwendet.</translation>
    </message>
    <message>
        <source>the folder &quot;%1&quot; cannot be made: %2</source>
        <translation>der Ordner „%1“ kann nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>no permission to write into &quot;%1&quot;</source>
        <translation>keine Berechtigung, in „%1“ zu schreiben</translation>
    </message>
</context>
<context>
    <name>plexa::SavingPreset</name>
    <message>
        <source>the presets are too many to be read back</source>
        <translation>es sind zu viele Vorgaben, um sie wieder lesen zu können</translation>
    </message>
    <message>
        <source>the saving preset &quot;%1&quot; could not be read back unchanged</source>
        <translation>die Speichervorgabe „%1“ ließ sich nicht unverändert wieder lesen</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written: %2</source>
        <translation>„%1“ kann nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>plexa::SavingPresetView</name>
    <message>
        <source>File name of the copies</source>
        <translation>Dateiname der Kopien</translation>
    </message>
    <message>
        <source>Insert a value that each copy has for itself, as its number</source>
        <translation>Einen Wert einfügen, der für jede Kopie ein anderer ist, etwa ihre Nummer</translation>
    </message>
    <message>
        <source>File name</source>
        <translation>Dateiname</translation>
    </message>
    <message>
        <source>Letters of the name</source>
        <translation>Schreibweise des Namens</translation>
    </message>
    <message>
        <source>Letters of the extension</source>
        <translation>Schreibweise der Endung</translation>
    </message>
    <message>
        <source>Letters, extension</source>
        <translation>Name, Endung</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Format of the copies</source>
        <translation>Format der Kopien</translation>
    </message>
    <message>
        <source>Format of copies whose original has one that cannot be written</source>
        <translation>Format von Kopien, deren Original ein Format hat, das nicht geschrieben werden kann</translation>
    </message>
    <message>
        <source>Otherwise</source>
        <translation>Andernfalls</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>A higher quality makes larger files</source>
        <translation>Höhere Qualität ergibt größere Dateien</translation>
    </message>
    <message>
        <source>Compress without loss (LZW)</source>
        <translation>Verlustfrei komprimieren (LZW)</translation>
    </message>
    <message>
        <source>Makes smaller files of the same quality</source>
        <translation>Ergibt kleinere Dateien derselben Qualität</translation>
    </message>
</context>
<context>
    <name>plexa::SavingProgressView</name>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Photos are being saved</source>
        <translation>Fotos werden gespeichert</translation>
    </message>
    <message>
        <source>The photo that is being saved</source>
        <translation>Das Foto, das gerade gespeichert wird</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Complete the copies under way and save no further ones (Esc)</source>
        <translation>Begonnene Kopien fertigstellen und keine weiteren speichern (Esc)</translation>
    </message>
    <message>
        <source>Completing the copies under way…</source>
        <translation>Begonnene Kopien werden fertiggestellt…</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>Noch wenige Sekunden</translation>
    </message>
    <message>
        <source>Less than a minute left</source>
        <translation>Noch weniger als eine Minute</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Noch etwa eine Minute</translation>
    </message>
    <message numerus="yes">
        <source>About %n minutes left</source>
        <translation>
            <numerusform>Noch etwa %n Minute</numerusform>
            <numerusform>Noch etwa %n Minuten</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>plexa::SavingReport</name>
    <message>
        <source>not saved; no name is free for &quot;%1&quot;</source>
        <translation>nicht gespeichert; für „%1“ ist kein Name frei</translation>
    </message>
    <message>
        <source>not saved; &quot;%1&quot; exists</source>
        <translation>nicht gespeichert; „%1“ ist vorhanden</translation>
    </message>
    <message>
        <source>not saved; the name &quot;%2&quot; belongs to the copy of &quot;%1&quot;</source>
        <translation>nicht gespeichert; der Name „%2“ gehört zur Kopie von „%1“</translation>
    </message>
    <message>
        <source>copy of &quot;%1&quot;; it replaced the copy of &quot;%2&quot;</source>
        <translation>Kopie von „%1“; sie hat die Kopie von „%2“ ersetzt</translation>
    </message>
    <message>
        <source>copy of &quot;%1&quot;; its name belongs to the copy of &quot;%2&quot;</source>
        <translation>Kopie von „%1“; ihr Name gehört zur Kopie von „%2“</translation>
    </message>
    <message>
        <source>1 copy saved</source>
        <translation>1 Kopie gespeichert</translation>
    </message>
    <message numerus="yes">
        <source>%n copies saved</source>
        <translation>
            <numerusform>%n Kopie gespeichert</numerusform>
            <numerusform>%n Kopien gespeichert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>, %n skipped</source>
        <translation>
            <numerusform>, %n übersprungen</numerusform>
            <numerusform>, %n übersprungen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>, %n failed</source>
        <translation>
            <numerusform>, %n fehlgeschlagen</numerusform>
            <numerusform>, %n fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>, %n not begun</source>
        <translation>
            <numerusform>, %n nicht begonnen</numerusform>
            <numerusform>, %n nicht begonnen</numerusform>
        </translation>
    </message>
    <message>
        <source>You stopped saving. The copies under way were completed.</source>
        <translation>Sie haben das Speichern gestoppt. Begonnene Kopien wurden fertiggestellt.</translation>
    </message>
    <message numerus="yes">
        <source>In %n folders</source>
        <translation>
            <numerusform>In %n Ordner</numerusform>
            <numerusform>In %n Ordnern</numerusform>
        </translation>
    </message>
    <message>
        <source>Failed:</source>
        <translation>Fehlgeschlagen:</translation>
    </message>
    <message>
        <source>The name was in use by another copy:</source>
        <translation>Der Name war von einer anderen Kopie belegt:</translation>
    </message>
    <message>
        <source>Skipped:</source>
        <translation>Übersprungen:</translation>
    </message>
    <message>
        <source>No watermark is visible on:</source>
        <translation>Kein Wasserzeichen ist sichtbar auf:</translation>
    </message>
    <message>
        <source>Remarks:</source>
        <translation>Hinweise:</translation>
    </message>
    <message>
        <source>Saved:</source>
        <translation>Gespeichert:</translation>
    </message>
</context>
<context>
    <name>plexa::SavingReportPanel</name>
    <message>
        <source>Report</source>
        <translation>Bericht</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message>
        <source>Show the copies in the file manager</source>
        <translation>Die Kopien im Dateimanager zeigen</translation>
    </message>
    <message>
        <source>There are no copies</source>
        <translation>Es gibt keine Kopien</translation>
    </message>
    <message>
        <source>Save Report…</source>
        <translation>Bericht speichern…</translation>
    </message>
    <message>
        <source>Write the report to a text file, with the paths of all copies</source>
        <translation>Den Bericht mit den Pfaden aller Kopien in eine Textdatei schreiben</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Bericht speichern</translation>
    </message>
    <message>
        <source>Text files (*.txt)</source>
        <translation>Textdateien (*.txt)</translation>
    </message>
    <message>
        <source>The report could not be saved</source>
        <translation>Der Bericht konnte nicht gespeichert werden</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>plexa::SessionRecord</name>
    <message>
        <source>%1 did not quit properly</source>
        <translation>%1 wurde nicht ordnungsgemäß beendet</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Start Empty</source>
        <translation>Leer beginnen</translation>
    </message>
    <message>
        <source>The list had one photo. Do you want it back, with its rotation, positions and edited metadata, and the applied presets?</source>
        <translation>Die Liste enthielt ein Foto. Möchten Sie es mit seiner Drehung, seinen Positionen, den bearbeiteten Metadaten und den angewendeten Vorgaben zurückhaben?</translation>
    </message>
    <message numerus="yes">
        <source>The list had %n photos. Do you want them back, with their rotations, positions and edited metadata, and the applied presets?</source>
        <translation>
            <numerusform>Die Liste enthielt %n Foto. Möchten Sie es mit seiner Drehung, seinen Positionen, den bearbeiteten Metadaten und den angewendeten Vorgaben zurückhaben?</numerusform>
            <numerusform>Die Liste enthielt %n Fotos. Möchten Sie sie mit ihren Drehungen, Positionen, den bearbeiteten Metadaten und den angewendeten Vorgaben zurückhaben?</numerusform>
        </translation>
    </message>
    <message>
        <source>The list had no photos. Do you want the applied presets back?</source>
        <translation>Die Liste enthielt keine Fotos. Möchten Sie die angewendeten Vorgaben zurückhaben?</translation>
    </message>
</context>
<context>
    <name>plexa::StatusLineView</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Stop what is running</source>
        <translation>Stoppen, was gerade läuft</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Import finished</source>
        <translation>Import abgeschlossen</translation>
    </message>
    <message>
        <source>Add photos to begin</source>
        <translation>Fügen Sie zuerst Fotos hinzu</translation>
    </message>
    <message>
        <source>Apply a preset to save</source>
        <translation>Wenden Sie zum Speichern eine Vorgabe an</translation>
    </message>
    <message>
        <source>Choose a picture for the watermark</source>
        <translation>Wählen Sie ein Bild für das Wasserzeichen</translation>
    </message>
    <message>
        <source>Enter a text for the watermark</source>
        <translation>Geben Sie einen Text für das Wasserzeichen ein</translation>
    </message>
</context>
<context>
    <name>plexa::StatusManager</name>
    <message>
        <source>No images</source>
        <translation>Keine Fotos</translation>
    </message>
    <message>
        <source>Counting images to import</source>
        <translation>Fotos werden gezählt</translation>
    </message>
    <message>
        <source>Importing images</source>
        <translation>Fotos werden importiert</translation>
    </message>
    <message>
        <source>Processing images</source>
        <translation>Fotos werden verarbeitet</translation>
    </message>
    <message>
        <source>Rotating images</source>
        <translation>Fotos werden gedreht</translation>
    </message>
    <message>
        <source>Pasting configuration</source>
        <translation>Positionen werden eingefügt</translation>
    </message>
    <message>
        <source>Importing presets</source>
        <translation>Vorgaben werden importiert</translation>
    </message>
    <message>
        <source>Sorting images</source>
        <translation>Fotos werden sortiert</translation>
    </message>
    <message>
        <source>%1 out of %2 images</source>
        <translation>%1 von %2 Fotos</translation>
    </message>
    <message>
        <source> (%1 selected)</source>
        <translation> (%1 ausgewählt)</translation>
    </message>
    <message numerus="yes">
        <source>%n images</source>
        <translation>
            <numerusform>%n Foto</numerusform>
            <numerusform>%n Fotos</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>plexa::SupportMail</name>
    <message>
        <source>What did you do?


What happened, and what did you expect?


If you can, attach a photo or a preset with which it happens.
</source>
        <translation>Was haben Sie getan?


Was ist geschehen, und was haben Sie erwartet?


Wenn möglich, hängen Sie bitte ein Foto oder eine Vorgabe an, mit denen es auftritt.
</translation>
    </message>
    <message>
        <source>Question about %1</source>
        <translation>Frage zu %1</translation>
    </message>
    <message>
        <source>No mail program could be opened</source>
        <translation>Es konnte kein Mailprogramm geöffnet werden</translation>
    </message>
    <message>
        <source>Write to %1 instead, and state your version: %2.</source>
        <translation>Schreiben Sie stattdessen an %1 und geben Sie Ihre Version an: %2.</translation>
    </message>
    <message>
        <source>Copy Address</source>
        <translation>Adresse kopieren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>plexa::TextWatermark</name>
    <message>
        <source>the watermark&apos;s text is %1 characters long, more than the %2 that are drawn</source>
        <translation>der Text des Wasserzeichens ist %1 Zeichen lang, mehr als die %2, die gezeichnet werden</translation>
    </message>
    <message numerus="yes">
        <source>%n more</source>
        <translation>
            <numerusform>%n weiteres</numerusform>
            <numerusform>%n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>no installed font has %1; the watermark shows a box for each</source>
        <translation>keine installierte Schrift enthält %1; das Wasserzeichen zeigt dafür jeweils ein Kästchen</translation>
    </message>
</context>
<context>
    <name>plexa::TokenEditor</name>
    <message>
        <source>Insert from Photo</source>
        <translation>Aus Foto einfügen</translation>
    </message>
</context>
<context>
    <name>plexa::TokenFieldCompletion</name>
    <message>
        <source>Tokens</source>
        <translation>Platzhalter</translation>
    </message>
</context>
<context>
    <name>plexa::TokenFieldWithInsertPopup</name>
    <message>
        <source>Text with tokens</source>
        <translation>Text mit Platzhaltern</translation>
    </message>
    <message>
        <source>Text and tokens. Type { for a list of the tokens.</source>
        <translation>Text und Platzhalter. Mit { erhalten Sie eine Liste der Platzhalter.</translation>
    </message>
    <message>
        <source>Insert Token</source>
        <translation>Platzhalter einfügen</translation>
    </message>
    <message>
        <source>Type a text, or { for a token</source>
        <translation>Text eingeben, oder { für einen Platzhalter</translation>
    </message>
    <message>
        <source>The current photo lacks this value.</source>
        <translation>Dem aktuellen Foto fehlt dieser Wert.</translation>
    </message>
</context>
<context>
    <name>plexa::UndoHistory</name>
    <message>
        <source>Edit Watermark</source>
        <translation>Wasserzeichen bearbeiten</translation>
    </message>
    <message>
        <source>Remove Photo</source>
        <translation>Foto entfernen</translation>
    </message>
    <message numerus="yes">
        <source>Remove %n Photos</source>
        <translation>
            <numerusform>%n Foto entfernen</numerusform>
            <numerusform>%n Fotos entfernen</numerusform>
        </translation>
    </message>
    <message>
        <source>Change Order of Photos</source>
        <translation>Reihenfolge der Fotos ändern</translation>
    </message>
    <message>
        <source>Apply Presets</source>
        <translation>Vorgaben anwenden</translation>
    </message>
    <message>
        <source>Remove Applied Presets</source>
        <translation>Angewendete Vorgaben entfernen</translation>
    </message>
    <message>
        <source>Clear Applied Presets</source>
        <translation>Angewendete Vorgaben leeren</translation>
    </message>
    <message>
        <source>Change Order of Presets</source>
        <translation>Reihenfolge der Vorgaben ändern</translation>
    </message>
    <message>
        <source>Paste Positions</source>
        <translation>Positionen einfügen</translation>
    </message>
    <message>
        <source>Reset Positions</source>
        <translation>Positionen zurücksetzen</translation>
    </message>
    <message>
        <source>Move Watermark</source>
        <translation>Wasserzeichen verschieben</translation>
    </message>
    <message>
        <source>Mirror Photo</source>
        <translation>Foto spiegeln</translation>
    </message>
    <message numerus="yes">
        <source>Mirror %n Photos</source>
        <translation>
            <numerusform>%n Foto spiegeln</numerusform>
            <numerusform>%n Fotos spiegeln</numerusform>
        </translation>
    </message>
    <message>
        <source>Turn Photo</source>
        <translation>Foto drehen</translation>
    </message>
    <message numerus="yes">
        <source>Turn %n Photos</source>
        <translation>
            <numerusform>%n Foto drehen</numerusform>
            <numerusform>%n Fotos drehen</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>plexa::UpdatePresenter</name>
    <message>
        <source>Checking for updates…</source>
        <translation>Suche nach Updates…</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>%1 is up to date</source>
        <translation>%1 ist aktuell</translation>
    </message>
    <message>
        <source>Version %1 is the newest one.</source>
        <translation>Version %1 ist die neueste.</translation>
    </message>
    <message>
        <source>Could not check for updates</source>
        <translation>Nach Updates konnte nicht gesucht werden</translation>
    </message>
    <message>
        <source>The server of the maker cannot be reached, or does not answer as it should. Check the connection to the Internet, or try again later.</source>
        <translation>Der Server des Herstellers ist nicht erreichbar oder antwortet nicht wie erwartet. Prüfen Sie die Verbindung zum Internet, oder versuchen Sie es später noch einmal.</translation>
    </message>
</context>
<context>
    <name>plexa::UpdateWindow</name>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Update</source>
        <translation>Update</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Was ist neu</translation>
    </message>
    <message>
        <source>&amp;Skip This Version</source>
        <translation>Diese Version &amp;überspringen</translation>
    </message>
    <message>
        <source>Tells you about later versions only</source>
        <translation>Meldet nur noch spätere Versionen</translation>
    </message>
    <message>
        <source>Remind Me &amp;Later</source>
        <translation>&amp;Später erinnern</translation>
    </message>
    <message>
        <source>Tells you about this version again on another day</source>
        <translation>Meldet diese Version an einem anderen Tag noch einmal</translation>
    </message>
    <message>
        <source>&amp;Open Download Page</source>
        <translation>&amp;Downloadseite öffnen</translation>
    </message>
    <message>
        <source>Opens %1 in your browser</source>
        <translation>Öffnet %1 in Ihrem Browser</translation>
    </message>
    <message>
        <source>%1 %2 is available</source>
        <translation>%1 %2 ist verfügbar</translation>
    </message>
    <message>
        <source>You have version %1. Download the package, then install it with the package manager of your system.</source>
        <translation>Sie haben Version %1. Laden Sie das Paket herunter und installieren Sie es dann mit der Paketverwaltung Ihres Systems.</translation>
    </message>
</context>
<context>
    <name>plexa::WImagePresetViewController</name>
    <message>
        <source>Picture of the watermark</source>
        <translation>Bild des Wasserzeichens</translation>
    </message>
    <message>
        <source>Drop or paste a picture here, or click to choose a file</source>
        <translation>Ziehen Sie ein Bild hierher, fügen Sie es ein oder klicken Sie, um eine Datei auszuwählen</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen…</translation>
    </message>
    <message>
        <source>Choose a picture file</source>
        <translation>Eine Bilddatei auswählen</translation>
    </message>
    <message>
        <source>Reading…</source>
        <translation>Wird gelesen…</translation>
    </message>
    <message>
        <source>Drop a picture here</source>
        <translation>Bild hierher ziehen</translation>
    </message>
    <message>
        <source>The picture cannot be shown</source>
        <translation>Das Bild kann nicht angezeigt werden</translation>
    </message>
    <message>
        <source>The picture cannot be read: %1</source>
        <translation>Das Bild kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>No picture yet</source>
        <translation>Noch kein Bild</translation>
    </message>
    <message>
        <source>%1 x %2 pixels</source>
        <translation>%1 x %2 Pixel</translation>
    </message>
    <message>
        <source>Drawing, sharp at any size</source>
        <translation>Zeichnung, in jeder Größe scharf</translation>
    </message>
</context>
<context>
    <name>plexa::WPresetArchive</name>
    <message>
        <source>&quot;%1&quot; of number %2 in its list cannot be read</source>
        <translation>„%1“ der Nummer %2 in der Liste kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; of number %2 in its list is not known</source>
        <translation>„%1“ der Nummer %2 in der Liste ist nicht bekannt</translation>
    </message>
    <message>
        <source>it has no list of watermark presets</source>
        <translation>die Datei enthält keine Liste von Wasserzeichen-Vorgaben</translation>
    </message>
    <message>
        <source>it has more than %1 presets</source>
        <translation>die Datei enthält mehr als %1 Vorgaben</translation>
    </message>
    <message>
        <source>the reading was stopped</source>
        <translation>das Lesen wurde gestoppt</translation>
    </message>
    <message>
        <source>number %1 in its list is not a watermark preset</source>
        <translation>Nummer %1 in der Liste ist keine Wasserzeichen-Vorgabe</translation>
    </message>
    <message>
        <source>it is too large</source>
        <translation>die Datei ist zu groß</translation>
    </message>
    <message>
        <source>%1 more in its list cannot be read</source>
        <translation>%1 weitere in der Liste können nicht gelesen werden</translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation>es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>it is not a file of watermark presets</source>
        <translation>es ist keine Datei mit Wasserzeichen-Vorgaben</translation>
    </message>
    <message>
        <source>there are more than %1 presets</source>
        <translation>es gibt mehr als %1 Vorgaben</translation>
    </message>
    <message>
        <source>it could not be read back: %1</source>
        <translation>die Datei ließ sich nicht wieder lesen: %1</translation>
    </message>
</context>
<context>
    <name>plexa::WPresetField</name>
    <message>
        <source>%1 from %2 to %3</source>
        <translation>%1 von %2 bis %3</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes %2</source>
        <translation>„%1“ erwartet %2</translation>
    </message>
    <message>
        <source>a text</source>
        <translation>einen Text</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no value of &quot;%2&quot;; the values are: %3</source>
        <translation>„%1“ ist kein Wert von „%2“; die Werte sind: %3</translation>
    </message>
    <message>
        <source>a list of texts in JSON, as in &apos;[&quot;Photo: &quot;,&quot;creator&quot;]&apos;</source>
        <translation>eine Liste von Texten in JSON, wie in &apos;[&quot;Foto: &quot;,&quot;creator&quot;]&apos;</translation>
    </message>
    <message>
        <source>a whole number</source>
        <translation>eine ganze Zahl</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>eine Zahl</translation>
    </message>
    <message>
        <source>true or false</source>
        <translation>true oder false</translation>
    </message>
    <message>
        <source>a color: #rrggbb, or #rrggbbaa with its opacity</source>
        <translation>eine Farbe: #rrggbb, oder #rrggbbaa mit ihrer Deckkraft</translation>
    </message>
    <message>
        <source>the path of a picture</source>
        <translation>den Pfad eines Bildes</translation>
    </message>
    <message>
        <source>&quot;%1&quot; refers to a saving preset and cannot be set here</source>
        <translation>„%1“ verweist auf eine Speichervorgabe und kann hier nicht gesetzt werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a field of a watermark preset; the fields are: %2</source>
        <translation>„%1“ ist kein Feld einer Wasserzeichen-Vorgabe; die Felder sind: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes %2; %3 is not JSON (the shell removes quotation marks that are not in single quotes)</source>
        <translation>„%1“ erwartet %2; %3 ist kein JSON (die Shell entfernt Anführungszeichen, die nicht in einfachen stehen)</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes %2; write &apos;[&quot;%3&quot;]&apos; for the text %3</source>
        <translation>„%1“ erwartet %2; schreiben Sie &apos;[&quot;%3&quot;]&apos; für den Text %3</translation>
    </message>
</context>
<context>
    <name>plexa::WPresetValues</name>
    <message>
        <source>the picture of the watermark preset &quot;%1&quot; cannot be read: %2</source>
        <translation>das Bild der Wasserzeichen-Vorgabe „%1“ kann nicht gelesen werden: %2</translation>
    </message>
</context>
<context>
    <name>plexa::WPresetViewController</name>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Size and Position</source>
        <translation>Größe und Position</translation>
    </message>
    <message>
        <source>Angle and Tiling</source>
        <translation>Winkel und Kacheln</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Aussehen</translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation>Schatten</translation>
    </message>
    <message>
        <source>Box</source>
        <translation>Kasten</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Kind of watermark</source>
        <translation>Art des Wasserzeichens</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Width of the watermark</source>
        <translation>Breite des Wasserzeichens</translation>
    </message>
    <message>
        <source>Unit of the width</source>
        <translation>Einheit der Breite</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Top left</source>
        <translation>Oben links</translation>
    </message>
    <message>
        <source>Top center</source>
        <translation>Oben Mitte</translation>
    </message>
    <message>
        <source>Top right</source>
        <translation>Oben rechts</translation>
    </message>
    <message>
        <source>Middle left</source>
        <translation>Mitte links</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>Middle right</source>
        <translation>Mitte rechts</translation>
    </message>
    <message>
        <source>Bottom left</source>
        <translation>Unten links</translation>
    </message>
    <message>
        <source>Bottom center</source>
        <translation>Unten Mitte</translation>
    </message>
    <message>
        <source>Bottom right</source>
        <translation>Unten rechts</translation>
    </message>
    <message>
        <source>From side</source>
        <translation>Seitlich</translation>
    </message>
    <message>
        <source>Distance from the side of the photo</source>
        <translation>Abstand vom seitlichen Rand des Fotos</translation>
    </message>
    <message>
        <source>Unit of the distance</source>
        <translation>Einheit des Abstands</translation>
    </message>
    <message>
        <source>From edge</source>
        <translation>Oben/unten</translation>
    </message>
    <message>
        <source>Distance from the upper or lower edge of the photo</source>
        <translation>Abstand vom oberen oder unteren Rand des Fotos</translation>
    </message>
    <message>
        <source>About the distances</source>
        <translation>Über die Abstände</translation>
    </message>
    <message>
        <source>Explain the distances</source>
        <translation>Die Abstände erklären</translation>
    </message>
    <message>
        <source>The distances are between the watermark and the nearest sides of the photo. Below 0, the watermark reaches beyond the photo.

To move the watermark of one photo only, drag it in the preview.</source>
        <translation>Die Abstände gelten zwischen dem Wasserzeichen und den nächsten Rändern des Fotos. Unter 0 ragt das Wasserzeichen über das Foto hinaus.

Um das Wasserzeichen nur eines Fotos zu verschieben, ziehen Sie es in der Vorschau.</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Winkel</translation>
    </message>
    <message>
        <source>Angle of the watermark, counter-clockwise</source>
        <translation>Winkel des Wasserzeichens, gegen den Uhrzeigersinn</translation>
    </message>
    <message>
        <source>Quarter turns</source>
        <translation>Vierteldrehungen</translation>
    </message>
    <message>
        <source>Not turned</source>
        <translation>Nicht gedreht</translation>
    </message>
    <message>
        <source>A quarter to the left</source>
        <translation>Eine Vierteldrehung nach links</translation>
    </message>
    <message>
        <source>A quarter to the right</source>
        <translation>Eine Vierteldrehung nach rechts</translation>
    </message>
    <message>
        <source>Upside down</source>
        <translation>Auf dem Kopf</translation>
    </message>
    <message>
        <source>Turn</source>
        <translation>Drehung</translation>
    </message>
    <message>
        <source>Mirroring</source>
        <translation>Spiegelung</translation>
    </message>
    <message>
        <source>Not mirrored</source>
        <translation>Nicht gespiegelt</translation>
    </message>
    <message>
        <source>Left to right</source>
        <translation>Links-rechts</translation>
    </message>
    <message>
        <source>Top to bottom</source>
        <translation>Oben-unten</translation>
    </message>
    <message>
        <source>Both</source>
        <translation>Beides</translation>
    </message>
    <message>
        <source>Mirror</source>
        <translation>Spiegeln</translation>
    </message>
    <message>
        <source>Repeat across the photo</source>
        <translation>Nebeneinander wiederholen</translation>
    </message>
    <message>
        <source>Gap</source>
        <translation>Lücke</translation>
    </message>
    <message>
        <source>Gap between the columns</source>
        <translation>Lücke zwischen den Spalten</translation>
    </message>
    <message>
        <source>Unit of the gap</source>
        <translation>Einheit der Lücke</translation>
    </message>
    <message>
        <source>Repeat down the photo</source>
        <translation>Untereinander wiederholen</translation>
    </message>
    <message>
        <source>Gap between the rows</source>
        <translation>Lücke zwischen den Zeilen</translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation>Deckkraft</translation>
    </message>
    <message>
        <source>How much of the photo the watermark covers</source>
        <translation>Wie stark das Wasserzeichen das Foto verdeckt</translation>
    </message>
    <message>
        <source>Blend mode</source>
        <translation>Mischmodus</translation>
    </message>
    <message>
        <source>How the colors of watermark and photo are mixed</source>
        <translation>Wie die Farben von Wasserzeichen und Foto gemischt werden</translation>
    </message>
    <message>
        <source>Blending</source>
        <translation>Mischung</translation>
    </message>
    <message>
        <source>Draw a shadow</source>
        <translation>Schatten zeichnen</translation>
    </message>
    <message>
        <source>Blur</source>
        <translation>Unschärfe</translation>
    </message>
    <message>
        <source>Blur of the shadow</source>
        <translation>Unschärfe des Schattens</translation>
    </message>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Distance of the shadow</source>
        <translation>Abstand des Schattens</translation>
    </message>
    <message>
        <source>Direction of the shadow, counter-clockwise from the right</source>
        <translation>Richtung des Schattens, von rechts gegen den Uhrzeigersinn</translation>
    </message>
    <message>
        <source>Draw a box behind the watermark</source>
        <translation>Kasten hinter dem Wasserzeichen</translation>
    </message>
    <message>
        <source>Color of the box</source>
        <translation>Farbe des Kastens</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Opacity of the box</source>
        <translation>Deckkraft des Kastens</translation>
    </message>
    <message>
        <source>As wide as the photo</source>
        <translation>So breit wie das Foto</translation>
    </message>
    <message>
        <source>Padding in</source>
        <translation>Abstand in</translation>
    </message>
    <message>
        <source>Unit of the padding</source>
        <translation>Einheit des Innenabstands</translation>
    </message>
    <message>
        <source>Top, bottom</source>
        <translation>Oben, unten</translation>
    </message>
    <message>
        <source>Padding at the top</source>
        <translation>Innenabstand oben</translation>
    </message>
    <message>
        <source>Padding at the bottom</source>
        <translation>Innenabstand unten</translation>
    </message>
    <message>
        <source>Left, right</source>
        <translation>Links, rechts</translation>
    </message>
    <message>
        <source>Padding at the left</source>
        <translation>Innenabstand links</translation>
    </message>
    <message>
        <source>Padding at the right</source>
        <translation>Innenabstand rechts</translation>
    </message>
    <message>
        <source>Saving preset</source>
        <translation>Speichervorgabe</translation>
    </message>
    <message>
        <source>The saving preset for photos with this watermark</source>
        <translation>Die Speichervorgabe für Fotos mit diesem Wasserzeichen</translation>
    </message>
    <message>
        <source>Save with</source>
        <translation>Speichern mit</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>For several columns, make the watermark narrower.</source>
        <translation>Für mehrere Spalten machen Sie das Wasserzeichen schmaler.</translation>
    </message>
</context>
<context>
    <name>plexa::WTextPresetViewController</name>
    <message>
        <source>Text of the watermark</source>
        <translation>Text des Wasserzeichens</translation>
    </message>
    <message>
        <source>Insert a value that each photo has for itself, as its date</source>
        <translation>Einen Wert einfügen, der für jedes Foto ein anderer ist, etwa sein Datum</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>The font; type a part of its name to find it</source>
        <translation>Die Schrift; geben Sie einen Teil ihres Namens ein, um sie zu finden</translation>
    </message>
    <message>
        <source>Style of the font</source>
        <translation>Schriftschnitt</translation>
    </message>
    <message>
        <source>The style of the font</source>
        <translation>Der Schnitt der Schrift</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Schnitt</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Size of the text</source>
        <translation>Größe des Textes</translation>
    </message>
    <message>
        <source>Unit of the size</source>
        <translation>Einheit der Größe</translation>
    </message>
    <message>
        <source>Alignment of the lines</source>
        <translation>Ausrichtung der Zeilen</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Centered</source>
        <translation>Zentriert</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>Ausrichtung</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Color of the text</source>
        <translation>Farbe des Textes</translation>
    </message>
    <message>
        <source>Color of the outline</source>
        <translation>Farbe der Kontur</translation>
    </message>
    <message>
        <source>Width of the outline, in percent of the size of the text; below 0: the outline alone</source>
        <translation>Breite der Kontur in Prozent der Schriftgröße; unter 0: nur die Kontur</translation>
    </message>
    <message>
        <source>Outline</source>
        <translation>Kontur</translation>
    </message>
    <message>
        <source>%1 is not installed</source>
        <translation>%1 ist nicht installiert</translation>
    </message>
</context>
<context>
    <name>plexa::WatermarkBitmap</name>
    <message>
        <source>there is not enough memory to draw the watermark</source>
        <translation>der Speicher reicht nicht aus, um das Wasserzeichen zu zeichnen</translation>
    </message>
    <message>
        <source>the watermark is left out: it would be %1 x %2 pixels large, more than memory is given for; make it smaller</source>
        <translation>das Wasserzeichen wird weggelassen: es wäre %1 x %2 Pixel groß und bräuchte mehr Speicher, als erlaubt ist; machen Sie es kleiner</translation>
    </message>
</context>
<context>
    <name>plexa::WatermarkDrawing</name>
    <message>
        <source>the shadow of the watermark is left out: it would be too large</source>
        <translation>der Schatten des Wasserzeichens wird weggelassen: er wäre zu groß</translation>
    </message>
    <message>
        <source>the watermark is drawn once: it would be repeated too many times; make the distances larger</source>
        <translation>das Wasserzeichen wird nur einmal gezeichnet: es würde zu oft wiederholt; vergrößern Sie die Abstände</translation>
    </message>
</context>
<context>
    <name>plexa::WatermarkPicture</name>
    <message>
        <source>the SVG drawing refers to another file, which drawings may not</source>
        <translation>die SVG-Zeichnung verweist auf eine andere Datei, was nicht erlaubt ist</translation>
    </message>
    <message>
        <source>the SVG drawing has more than %1 rules of style</source>
        <translation>die SVG-Zeichnung hat mehr als %1 Stilregeln</translation>
    </message>
    <message>
        <source>the SVG drawing has a picture in it that cannot be read</source>
        <translation>die SVG-Zeichnung enthält ein Bild, das nicht gelesen werden kann</translation>
    </message>
    <message>
        <source>the pictures in the SVG drawing have more than %1 million pixels</source>
        <translation>die Bilder in der SVG-Zeichnung haben mehr als %1 Millionen Pixel</translation>
    </message>
    <message>
        <source>it is not an SVG drawing</source>
        <translation>es ist keine SVG-Zeichnung</translation>
    </message>
    <message>
        <source>the elements of the SVG drawing are nested more than %1 levels deep</source>
        <translation>die Elemente der SVG-Zeichnung sind mehr als %1 Ebenen tief verschachtelt</translation>
    </message>
    <message>
        <source>a gradient of the SVG drawing has more than %1 stops</source>
        <translation>ein Verlauf der SVG-Zeichnung hat mehr als %1 Stufen</translation>
    </message>
    <message>
        <source>the SVG drawing is damaged in line %1</source>
        <translation>die SVG-Zeichnung ist in Zeile %1 beschädigt</translation>
    </message>
    <message>
        <source>the gradients of the SVG drawing refer to too many others</source>
        <translation>die Verläufe der SVG-Zeichnung verweisen auf zu viele andere</translation>
    </message>
    <message>
        <source>the SVG drawing has more than %1 parts, references included</source>
        <translation>die SVG-Zeichnung hat mehr als %1 Teile, Verweise eingeschlossen</translation>
    </message>
    <message>
        <source>the SVG drawing cannot be read</source>
        <translation>die SVG-Zeichnung kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>the SVG drawing has no size</source>
        <translation>die SVG-Zeichnung hat keine Größe</translation>
    </message>
    <message>
        <source>there is not enough memory for it</source>
        <translation>der Speicher reicht dafür nicht aus</translation>
    </message>
    <message>
        <source>no thread can be started to draw it</source>
        <translation>zum Zeichnen kann kein Thread gestartet werden</translation>
    </message>
    <message>
        <source>the SVG drawing takes more than %1 seconds to draw</source>
        <translation>das Zeichnen der SVG-Zeichnung dauert länger als %1 Sekunden</translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation>es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>the SVG drawing is larger than %1 MB</source>
        <translation>die SVG-Zeichnung ist größer als %1 MB</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be used as a watermark: %2</source>
        <translation>„%1“ kann nicht als Wasserzeichen verwendet werden: %2</translation>
    </message>
    <message>
        <source>it is compressed, as .svgz files are; save the drawing as plain SVG</source>
        <translation>die Zeichnung ist komprimiert wie .svgz-Dateien; speichern Sie sie als einfaches SVG</translation>
    </message>
</context>
</TS>
