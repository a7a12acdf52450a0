<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
<name>Framekeeper</name>
<message>
    <source>Framekeeper</source>
    <translation>Framekeeper</translation>
</message>
<message>
    <source>Menus</source>
    <translation>Menüs</translation>
</message>
<message>
    <source>&amp;Copy</source>
    <translation>&amp;Kopie</translation>
</message>
<message>
    <source>&amp;Edit</source>
    <translation>&amp;Bearbeiten</translation>
</message>
<message>
    <source>S&amp;ystem</source>
    <translation>S&amp;ystem</translation>
</message>
<message>
    <source>Search and selected copies</source>
    <translation>Suche und ausgewählte Kopien</translation>
</message>
<message>
    <source>Filter path or version</source>
    <translation>Pfad oder Version filtern</translation>
</message>
<message>
    <source>Shows only copies whose path or version contains this text (Ctrl+F)</source>
    <translation>Zeigt nur Kopien, deren Pfad oder Version diesen Text enthält (Strg+F)</translation>
</message>
<message>
    <source>Filter</source>
    <translation>Filter</translation>
</message>
<message>
    <source>Copies of Mirror Frame</source>
    <translation>Kopien von Mirror Frame</translation>
</message>
<message>
    <source>Version</source>
    <translation>Version</translation>
</message>
<message>
    <source>Path</source>
    <translation>Pfad</translation>
</message>
<message>
    <source>Exists</source>
    <translation>Vorhanden</translation>
</message>
<message>
    <source>Running</source>
    <translation>Läuft</translation>
</message>
<message>
    <source>Login Item</source>
    <translation>Anmeldung</translation>
</message>
<message>
    <source>In Toolbar</source>
    <translation>In Leiste</translation>
</message>
<message>
    <source>No copy of Mirror Frame was found</source>
    <translation>Keine Kopie von Mirror Frame gefunden</translation>
</message>
<message>
    <source>Looked at: all local volumes, the running programs,
the login items and the file browser's toolbar.
Connect the volume that may hold a copy, then scan again.</source>
    <translation>Durchsucht: alle lokalen Volumes, die laufenden Programme,
die Anmeldeobjekte und die Leiste der Dateiverwaltung.
Schließen Sie das Volume an, das eine Kopie enthalten kann, und suchen Sie erneut.</translation>
</message>
<message>
    <source>Scan A&amp;gain</source>
    <translation>Erneut s&amp;uchen</translation>
</message>
<message>
    <source>Reads all sources anew and searches all local volumes</source>
    <translation>Liest alle Quellen neu und durchsucht alle lokalen Volumes</translation>
</message>
<message>
    <source>Searching all local volumes for copies of Mirror Frame…</source>
    <translation>Alle lokalen Volumes werden nach Kopien von Mirror Frame durchsucht …</translation>
</message>
<message>
    <source>No copy matches the filter</source>
    <translation>Keine Kopie passt zum Filter</translation>
</message>
<message>
    <source>Show A&amp;ll Copies</source>
    <translation>A&amp;lle Kopien zeigen</translation>
</message>
<message>
    <source>Empties the filter</source>
    <translation>Leert den Filter</translation>
</message>
<message>
    <source>Login items, toolbar and system</source>
    <translation>Anmeldeobjekte, Leiste und System</translation>
</message>
<message>
    <source>Number of copies</source>
    <translation>Anzahl der Kopien</translation>
</message>
<message numerus="yes">
    <source>%@ copies</source>
    <translation><numerusform>%@ Kopie</numerusform><numerusform>%@ Kopien</numerusform></translation>
</message>
<message>
    <source>No copies</source>
    <translation>Keine Kopien</translation>
</message>
<message>
    <source>Copies that match the filter</source>
    <translation>Kopien, die zum Filter passen</translation>
</message>
<message>
    <source>%@ shown</source>
    <translation>%@ angezeigt</translation>
</message>
<message>
    <source>None shown</source>
    <translation>Keine angezeigt</translation>
</message>
<message>
    <source>Folders that could not be read</source>
    <translation>Nicht lesbare Ordner</translation>
</message>
<message>
    <source>Copies in these folders are not listed. They belong to other users or to the system.</source>
    <translation>Kopien in diesen Ordnern sind nicht aufgeführt. Die Ordner gehören anderen Benutzern oder dem System.</translation>
</message>
<message numerus="yes">
    <source>%@ folders could not be read</source>
    <translation><numerusform>%@ Ordner nicht lesbar</numerusform><numerusform>%@ Ordner nicht lesbar</numerusform></translation>
</message>
<message>
    <source>Last message</source>
    <translation>Letzte Meldung</translation>
</message>
<message>
    <source>That could not be done.</source>
    <translation>Das ging nicht.</translation>
</message>
<message>
    <source>Undo</source>
    <translation>Rückgängig</translation>
</message>
<message>
    <source>Takes back what was just done (Ctrl+Z)</source>
    <translation>Macht den letzten Schritt rückgängig (Strg+Z)</translation>
</message>
<message>
    <source>Undoing…</source>
    <translation>Wird rückgängig gemacht …</translation>
</message>
<message>
    <source>Searching</source>
    <translation>Suche läuft</translation>
</message>
<message>
    <source>The local volumes are being searched</source>
    <translation>Die lokalen Volumes werden durchsucht</translation>
</message>
<message>
    <source>&amp;Scan</source>
    <translation>&amp;Suchen</translation>
</message>
<message>
    <source>S&amp;top</source>
    <translation>S&amp;topp</translation>
</message>
<message>
    <source>Ends the search; the copies found so far stay listed</source>
    <translation>Beendet die Suche; bisher gefundene Kopien bleiben aufgeführt</translation>
</message>
<message>
    <source>No search is running</source>
    <translation>Es läuft keine Suche</translation>
</message>
<message>
    <source>&amp;Reveal</source>
    <translation>&amp;Zeigen</translation>
</message>
<message>
    <source>Shows the selected copies in the file browser; so does a double click</source>
    <translation>Zeigt die ausgewählten Kopien in der Dateiverwaltung, ebenso ein Doppelklick</translation>
</message>
<message>
    <source>Select a copy</source>
    <translation>Wählen Sie eine Kopie aus</translation>
</message>
<message>
    <source>Waiting for the file browser…</source>
    <translation>Warten auf die Dateiverwaltung …</translation>
</message>
<message>
    <source>&amp;Quit Copy</source>
    <translation>&amp;Beenden</translation>
</message>
<message>
    <source>Asks the selected running copy to quit</source>
    <translation>Fordert die ausgewählte laufende Kopie auf, sich zu beenden</translation>
</message>
<message>
    <source>Select one copy</source>
    <translation>Wählen Sie genau eine Kopie aus</translation>
</message>
<message>
    <source>Not running</source>
    <translation>Läuft nicht</translation>
</message>
<message>
    <source>Waiting for the copy to quit…</source>
    <translation>Warten, bis die Kopie beendet ist …</translation>
</message>
<message>
    <source>S&amp;wap Icon</source>
    <translation>S&amp;ymbol tauschen</translation>
</message>
<message>
    <source>Gives the selected copy the other one of its two icons and shows it</source>
    <translation>Gibt der ausgewählten Kopie das andere ihrer beiden Symbole und zeigt sie</translation>
</message>
<message>
    <source>Not on the disk</source>
    <translation>Nicht auf dem Datenträger</translation>
</message>
<message>
    <source>Swapping the icon…</source>
    <translation>Symbol wird getauscht …</translation>
</message>
<message>
    <source>&amp;Move to Trash</source>
    <translation>In den &amp;Papierkorb</translation>
</message>
<message>
    <source>Moves the selected copy to the trash</source>
    <translation>Legt die ausgewählte Kopie in den Papierkorb</translation>
</message>
<message>
    <source>Already in the trash</source>
    <translation>Schon im Papierkorb</translation>
</message>
<message>
    <source>Moving to the trash…</source>
    <translation>Wird in den Papierkorb gelegt …</translation>
</message>
<message>
    <source>Delete</source>
    <translation>Löschen</translation>
</message>
<message>
    <source>Deletes the selected copy at once and for good; this cannot be undone</source>
    <translation>Löscht die ausgewählte Kopie sofort und endgültig; das lässt sich nicht rückgängig machen</translation>
</message>
<message>
    <source>Deleting…</source>
    <translation>Wird gelöscht …</translation>
</message>
<message>
    <source>&amp;Put Back</source>
    <translation>Zu&amp;rücklegen</translation>
</message>
<message>
    <source>Moves the selected copy out of the trash to where it came from</source>
    <translation>Legt die ausgewählte Kopie aus dem Papierkorb dorthin zurück, woher sie kam</translation>
</message>
<message>
    <source>Not in the trash</source>
    <translation>Nicht im Papierkorb</translation>
</message>
<message>
    <source>Putting back…</source>
    <translation>Wird zurückgelegt …</translation>
</message>
<message>
    <source>&amp;Undo</source>
    <translation>Rück&amp;gängig</translation>
</message>
<message>
    <source>Takes back the last change: a move to the trash, a login item, a place, an icon. A deleted copy is gone</source>
    <translation>Nimmt die letzte Änderung zurück: Papierkorb, Anmeldeobjekt, Ort, Symbol. Eine gelöschte Kopie ist verloren</translation>
</message>
<message>
    <source>Nothing to undo</source>
    <translation>Nichts rückgängig zu machen</translation>
</message>
<message>
    <source>&amp;Add to Login Items</source>
    <translation>Bei An&amp;meldung starten</translation>
</message>
<message>
    <source>Starts the selected copy at every login, in place of any other copy</source>
    <translation>Startet die ausgewählte Kopie bei jeder Anmeldung anstelle jeder anderen Kopie</translation>
</message>
<message>
    <source>Remo&amp;ve from Login Items</source>
    <translation>Nicht bei Anmel&amp;dung</translation>
</message>
<message>
    <source>No longer starts the selected copy at login</source>
    <translation>Startet die ausgewählte Kopie nicht mehr bei der Anmeldung</translation>
</message>
<message>
    <source>Not a login item</source>
    <translation>Kein Anmeldeobjekt</translation>
</message>
<message>
    <source>Remove from Tool&amp;bar</source>
    <translation>Aus &amp;Leiste entfernen</translation>
</message>
<message>
    <source>Takes the selected copy out of the places in the file browser's toolbar and restarts the file browser</source>
    <translation>Entfernt die ausgewählte Kopie aus den Orten in der Leiste der Dateiverwaltung und startet die Dateiverwaltung neu</translation>
</message>
<message>
    <source>Not in the places</source>
    <translation>Nicht in den Orten</translation>
</message>
<message>
    <source>Restarting the file browser…</source>
    <translation>Die Dateiverwaltung wird neu gestartet …</translation>
</message>
<message>
    <source>Acc&amp;ounts</source>
    <translation>Ben&amp;utzer</translation>
</message>
<message>
    <source>Opens the account settings, where login items are kept</source>
    <translation>Öffnet die Einstellungen der Benutzer, zu denen die Anmeldeobjekte gehören</translation>
</message>
<message>
    <source>Activity Mo&amp;nitor</source>
    <translation>Akti&amp;vität</translation>
</message>
<message>
    <source>Opens the system monitor</source>
    <translation>Öffnet die Systemüberwachung</translation>
</message>
<message>
    <source>Quit File Browser</source>
    <translation>Dateiverwaltung beenden</translation>
</message>
<message>
    <source>Quits the file browser and starts it anew</source>
    <translation>Beendet die Dateiverwaltung und startet sie neu</translation>
</message>
<message>
    <source>Log Out</source>
    <translation>Abmelden</translation>
</message>
<message>
    <source>Ends your session; the desktop asks first</source>
    <translation>Beendet Ihre Sitzung; die Arbeitsumgebung fragt vorher</translation>
</message>
</context>
</TS>
