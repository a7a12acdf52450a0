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
    <source>No copy matches the filter</source>
    <translation>Keine Kopie passt zum Filter</translation>
</message>
<message>
    <source>Show A&amp;ll Copies</source>
    <translation>Alle K&amp;opien zeigen</translation>
</message>
<message>
    <source>Empties the filter</source>
    <translation>Leert den Filter</translation>
</message>
<message>
    <source>Login items, toolbar and system</source>
    <translation>Anmeldeobjekte, Leiste und System</translation>
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
    <source>%@ shown</source>
    <translation>%@ angezeigt</translation>
</message>
<message>
    <source>None shown</source>
    <translation>Keine angezeigt</translation>
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
    <translation>Be&amp;enden</translation>
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
    <translation>S&amp;ymboltausch</translation>
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
    <translation>&amp;Papierkorb</translation>
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
    <translation>Nicht bei Anme&amp;ldung</translation>
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
    <translation>Aus Le&amp;iste</translation>
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
    <translation>Be&amp;nutzer</translation>
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
<message>
    <source>no copy of Mirror Frame is there</source>
    <translation>dort liegt keine Kopie von Mirror Frame</translation>
</message>
<message>
    <source>it has left the list meanwhile</source>
    <translation>sie steht inzwischen nicht mehr in der Liste</translation>
</message>
<message>
    <source>another copy has taken its place</source>
    <translation>eine andere Kopie hat ihren Platz eingenommen</translation>
</message>
<message>
    <source>no copy of Mirror Frame runs there</source>
    <translation>dort läuft keine Kopie von Mirror Frame</translation>
</message>
<message>
    <source>it has been started again</source>
    <translation>sie wurde wieder gestartet</translation>
</message>
<message>
    <source>no copy of Mirror Frame is in the trash</source>
    <translation>im Papierkorb liegt keine Kopie von Mirror Frame</translation>
</message>
<message>
    <source>it does not start at login</source>
    <translation>sie startet nicht bei der Anmeldung</translation>
</message>
<message>
    <source>it is not in the places</source>
    <translation>sie steht nicht in den Orten</translation>
</message>
<message>
    <source>the file browser could not show it</source>
    <translation>die Dateiverwaltung konnte sie nicht zeigen</translation>
</message>
<message>
    <source>its icon is swapped, but the file browser could not show it</source>
    <translation>ihr Symbol ist getauscht, aber die Dateiverwaltung konnte sie nicht zeigen</translation>
</message>
<message>
    <source>the list could not be read</source>
    <translation>die Liste war nicht lesbar</translation>
</message>
<message>
    <source>it is in the list again</source>
    <translation>sie steht wieder in der Liste</translation>
</message>
<message numerus="yes">
    <source>Searching: %n found</source>
    <translation><numerusform>Suche läuft: %n gefunden</numerusform><numerusform>Suche läuft: %n gefunden</numerusform></translation>
</message>
<message numerus="yes">
    <source>%n folders could not be read</source>
    <translation><numerusform>%n Ordner war nicht lesbar</numerusform><numerusform>%n Ordner waren nicht lesbar</numerusform></translation>
</message>
<message>
    <source>the login items or the places could not be read, or not entirely</source>
    <translation>die Anmeldeobjekte oder die Orte waren nicht oder nicht ganz lesbar</translation>
</message>
<message>
    <source>the search could not be started</source>
    <translation>die Suche ließ sich nicht starten</translation>
</message>
<message>
    <source>delete without a terminal needs --yes</source>
    <translation>delete ohne Terminal verlangt --yes</translation>
</message>
<message>
    <source>Delete for good? [y/N]</source>
    <translation>Endgültig löschen? [y = ja / N = nein]</translation>
</message>
<message>
    <source>There is no list operation “%@”</source>
    <translation>Es gibt keine Listenoperation „%@“</translation>
</message>
<message>
    <source>No verb is given</source>
    <translation>Es fehlt ein Verb</translation>
</message>
<message>
    <source>There is no verb “%@”</source>
    <translation>Es gibt kein Verb „%@“</translation>
</message>
<message>
    <source>%@ needs a path</source>
    <translation>%@ braucht einen Pfad</translation>
</message>
<message>
    <source>%@ takes no path</source>
    <translation>%@ nimmt keinen Pfad</translation>
</message>
<message>
    <source>%@ add takes one path</source>
    <translation>%@ add nimmt genau einen Pfad</translation>
</message>
<message>
    <source>A path is empty</source>
    <translation>Ein Pfad ist leer</translation>
</message>
<message>
    <source>--yes belongs to delete alone</source>
    <translation>--yes gehört nur zu delete</translation>
</message>
<message>
    <source>There is no option “%@”</source>
    <translation>Es gibt keine Option „%@“</translation>
</message>
<message>
    <source>usage: framekeeper-cli [OPTION]... VERB [PATH]...

Finds the copies of Mirror Frame and cleans up.

  list                 all copies on this computer, and the paths of those that
                       run, start at login or stand in the places
  info PATH...         what is known of these copies
  reveal PATH...       show them in the file browser
  quit PATH...         ask the running copies to quit
  trash PATH...        move them to the trash
  restore PATH...      put them back: the path in the trash, or where they came from
  delete PATH...       delete them for good
  swap-icon PATH...    give them the other one of their two icons
  login                the copies that start at login
  login add PATH       make this copy the one that starts at login
  login remove PATH... remove these from the login items
  places               the copies in the file browser's places
  places remove PATH...
                       remove these from the places
  report FILE...|FOLDER...
                       what many hosts told with list --json, as one page in
                       HTML: a file HOST.json each, or folders of such files

  --json       output for programs
  -0, --null   paths alone, each with a NUL behind it
  --csv        the report as rows for a spreadsheet
  -y, --yes    delete without asking
  -h, --help   this text
  --version    the version

Exit status: 0 done, 1 failed, 2 wrong usage, 3 no such copy, 4 done but not shown in the
file browser, 5 not confirmed, 6 output could not be written, 130 interrupted.
</source>
    <translation>Aufruf: framekeeper-cli [OPTION]... VERB [PFAD]...

Findet die Kopien von Mirror Frame und räumt auf.

  list                 alle Kopien auf diesem Rechner und die Pfade derer, die
                       laufen, bei der Anmeldung starten oder in den Orten stehen
  info PFAD...         was über diese Kopien bekannt ist
  reveal PFAD...       in der Dateiverwaltung zeigen
  quit PFAD...         die laufenden Kopien zum Beenden auffordern
  trash PFAD...        in den Papierkorb legen
  restore PFAD...      zurücklegen: der Pfad im Papierkorb oder der frühere
  delete PFAD...       endgültig löschen
  swap-icon PFAD...    das andere ihrer beiden Symbole geben
  login                die Kopien, die bei der Anmeldung starten
  login add PFAD       diese Kopie bei der Anmeldung starten, keine andere
  login remove PFAD... diese aus den Anmeldeobjekten nehmen
  places               die Kopien in den Orten der Dateiverwaltung
  places remove PFAD...
                       diese aus den Orten nehmen
  report DATEI...|ORDNER...
                       was viele Rechner mit list --json meldeten, als eine
                       HTML-Seite: je eine Datei RECHNER.json oder Ordner davon

  --json       Ausgabe für Programme
  -0, --null   nur Pfade, jeder mit einem NUL dahinter
  --csv        der Bericht als Zeilen für eine Tabelle
  -y, --yes    ohne Frage löschen
  -h, --help   dieser Text
  --version    die Version

Ende mit: 0 getan, 1 fehlgeschlagen, 2 falscher Aufruf, 3 keine solche Kopie, 4 getan, aber nicht
in der Dateiverwaltung gezeigt, 5 nicht bestätigt, 6 Ausgabe nicht geschrieben, 130 unterbrochen.
</translation>
</message>
<message>
    <source>%@ has no output of this form</source>
    <translation>%@ hat keine Ausgabe in dieser Form</translation>
</message>
<message>
    <source>done</source>
    <translation>erledigt</translation>
</message>
<message>
    <source>not-shown</source>
    <translation>erledigt, aber nicht gezeigt</translation>
</message>
<message>
    <source>no-such-copy</source>
    <translation>keine solche Kopie</translation>
</message>
<message>
    <source>failed</source>
    <translation>fehlgeschlagen</translation>
</message>
<message>
    <source>not-confirmed</source>
    <translation>nicht bestätigt</translation>
</message>
<message>
    <source>not-written</source>
    <translation>nicht geschrieben</translation>
</message>
<message>
    <source>interrupted</source>
    <translation>unterbrochen</translation>
</message>
<message>
    <source>yes</source>
    <translation>ja</translation>
</message>
<message>
    <source>no</source>
    <translation>nein</translation>
</message>
<message>
    <source>yes, as process %@</source>
    <translation>ja, als Prozess %@</translation>
</message>
<message>
    <source>No copies.</source>
    <translation>Keine Kopien.</translation>
</message>
<message>
    <source>VERSION</source>
    <translation>VERSION</translation>
</message>
<message>
    <source>EXISTS</source>
    <translation>VORHANDEN</translation>
</message>
<message>
    <source>RUNS</source>
    <translation>LÄUFT</translation>
</message>
<message>
    <source>LOGIN</source>
    <translation>ANMELDUNG</translation>
</message>
<message>
    <source>PLACES</source>
    <translation>ORTE</translation>
</message>
<message>
    <source>PATH</source>
    <translation>PFAD</translation>
</message>
<message>
    <source>Path:</source>
    <translation>Pfad:</translation>
</message>
<message>
    <source>Version:</source>
    <translation>Version:</translation>
</message>
<message>
    <source>Exists:</source>
    <translation>Vorhanden:</translation>
</message>
<message>
    <source>Runs:</source>
    <translation>Läuft:</translation>
</message>
<message>
    <source>Login:</source>
    <translation>Anmeldung:</translation>
</message>
<message>
    <source>Places:</source>
    <translation>Orte:</translation>
</message>
<message>
    <source>&amp;File</source>
    <translation>&amp;Datei</translation>
</message>
<message>
    <source>V&amp;iew</source>
    <translation>&amp;Ansicht</translation>
</message>
<message>
    <source>Sort by</source>
    <translation>Sortieren nach</translation>
</message>
<message>
    <source>&amp;Help</source>
    <translation>&amp;Hilfe</translation>
</message>
<message>
    <source>Close Window</source>
    <translation>Fenster schließen</translation>
</message>
<message>
    <source>Quit Framekeeper</source>
    <translation>Framekeeper beenden</translation>
</message>
<message>
    <source>Copy Path</source>
    <translation>Pfad kopieren</translation>
</message>
<message>
    <source>Puts the paths of the selected copies on the clipboard, as text and as files to paste</source>
    <translation>Legt die Pfade der ausgewählten Kopien in die Zwischenablage, als Text und als Dateien zum Einfügen</translation>
</message>
<message>
    <source>Select All</source>
    <translation>Alle auswählen</translation>
</message>
<message>
    <source>No copies are shown</source>
    <translation>Es werden keine Kopien angezeigt</translation>
</message>
<message>
    <source>Clear Filter</source>
    <translation>Filter leeren</translation>
</message>
<message>
    <source>Reset Column Widths</source>
    <translation>Spaltenbreiten zurücksetzen</translation>
</message>
<message>
    <source>&amp;Keyboard Shortcuts</source>
    <translation>&amp;Tastenkürzel</translation>
</message>
<message>
    <source>About Framekeeper</source>
    <translation>Über Framekeeper</translation>
</message>
<message>
    <source>usage: %@ [OPTION]...

Opens the window, or brings the open one to the front.

  -h, --help   this text
  --version    the version
  -KEY VALUE   a setting for this start alone
</source>
    <translation>Aufruf: %@ [OPTION]...

Öffnet das Fenster oder holt das offene nach vorn.

  -h, --help   dieser Text
  --version    die Version
  -KEY VALUE   eine Einstellung nur für diesen Start
</translation>
</message>
<message>
    <source>Adding up…</source>
    <translation>Wird addiert …</translation>
</message>
<message numerus="yes">
    <source>%n items</source>
    <translation><numerusform>%n Objekt</numerusform><numerusform>%n Objekte</numerusform></translation>
</message>
<message numerus="yes">
    <source>%n items could not be read</source>
    <translation><numerusform>%n Objekt nicht lesbar</numerusform><numerusform>%n Objekte nicht lesbar</numerusform></translation>
</message>
<message>
    <source>Process %d</source>
    <translation>Prozess %d</translation>
</message>
<message>
    <source>Does not start at login</source>
    <translation>Startet nicht bei der Anmeldung</translation>
</message>
<message>
    <source>Starts at login</source>
    <translation>Startet bei der Anmeldung</translation>
</message>
<message>
    <source>In the places</source>
    <translation>In den Orten</translation>
</message>
<message>
    <source>Not compared yet</source>
    <translation>Noch nicht verglichen</translation>
</message>
<message>
    <source>Compared %lu of %lu</source>
    <translation>%lu von %lu verglichen</translation>
</message>
<message>
    <source>Stopped after %lu of %lu</source>
    <translation>Nach %lu von %lu beendet</translation>
</message>
<message>
    <source>No other copy is the same</source>
    <translation>Keine andere Kopie ist gleich</translation>
</message>
<message>
    <source>No other copy that could be read is the same</source>
    <translation>Keine andere lesbare Kopie ist gleich</translation>
</message>
<message numerus="yes">
    <source>%n copies could not be read</source>
    <translation><numerusform>%n Kopie war nicht lesbar</numerusform><numerusform>%n Kopien waren nicht lesbar</numerusform></translation>
</message>
<message numerus="yes">
    <source>and %n more</source>
    <translation><numerusform>und %n weitere</numerusform><numerusform>und %n weitere</numerusform></translation>
</message>
<message>
    <source>Searching for copies of Mirror Frame…</source>
    <translation>Kopien von Mirror Frame werden gesucht …</translation>
</message>
<message>
    <source>All local volumes are searched, and the running programs, the login items and the file browser's toolbar are looked at. The first search reads every folder and can take minutes; later ones begin with what it found.</source>
    <translation>Alle lokalen Volumes werden durchsucht, die laufenden Programme, die Anmeldeobjekte und die Leiste der Dateiverwaltung angesehen. Die erste Suche liest jeden Ordner und kann Minuten dauern; spätere beginnen mit dem, was sie fand.</translation>
</message>
<message>
    <source>Copies are listed here as they are found. Select one to show it, to quit it, or to move it to the trash; Esc stops the search, F1 shows all keys.</source>
    <translation>Kopien erscheinen hier, sobald sie gefunden sind. Wählen Sie eine aus, um sie zu zeigen, zu beenden oder in den Papierkorb zu legen; Esc beendet die Suche, F1 zeigt alle Tasten.</translation>
</message>
<message numerus="yes">
    <source>%n new</source>
    <translation><numerusform>%n neue</numerusform><numerusform>%n neue</numerusform></translation>
</message>
<message numerus="yes">
    <source>%n gone</source>
    <translation><numerusform>%n verschwunden</numerusform><numerusform>%n verschwunden</numerusform></translation>
</message>
<message>
    <source>%@, %@ since the scan.</source>
    <translation>%@, %@ seit der Suche.</translation>
</message>
<message>
    <source>%@ since the scan.</source>
    <translation>%@ seit der Suche.</translation>
</message>
<message>
    <source>“%@” is no option</source>
    <translation>„%@“ ist keine Option</translation>
</message>
<message>
    <source>Scan again</source>
    <translation>Erneut suchen</translation>
</message>
<message>
    <source>Details</source>
    <translation>Details</translation>
</message>
<message>
    <source>Select one copy to see its details</source>
    <translation>Wählen Sie eine Kopie aus, um ihre Details zu sehen</translation>
</message>
<message>
    <source>Same as</source>
    <translation>Gleich wie</translation>
</message>
<message>
    <source>Size on disk</source>
    <translation>Belegt</translation>
</message>
<message>
    <source>Created</source>
    <translation>Erstellt</translation>
</message>
<message>
    <source>Modified</source>
    <translation>Geändert</translation>
</message>
<message>
    <source>Volume</source>
    <translation>Volume</translation>
</message>
<message>
    <source>Show</source>
    <translation>Zeigen</translation>
</message>
<message>
    <source>Shows where the volume is mounted</source>
    <translation>Zeigt, wo das Volume eingehängt ist</translation>
</message>
<message>
    <source>Process</source>
    <translation>Prozess</translation>
</message>
<message>
    <source>Shows the program that the process runs</source>
    <translation>Zeigt das Programm, das der Prozess ausführt</translation>
</message>
<message>
    <source>Login item</source>
    <translation>Anmeldung</translation>
</message>
<message>
    <source>Shows the file of the login item</source>
    <translation>Zeigt die Datei des Anmeldeobjekts</translation>
</message>
<message>
    <source>Place</source>
    <translation>Ort</translation>
</message>
<message>
    <source>Shows the file that holds the place</source>
    <translation>Zeigt die Datei, in der der Ort steht</translation>
</message>
<message>
    <source>Compare</source>
    <translation>Vergleichen</translation>
</message>
<message>
    <source>Finds the other copies that are the same byte for byte</source>
    <translation>Findet die anderen Kopien, die Byte für Byte gleich sind</translation>
</message>
<message>
    <source>Stop comparing</source>
    <translation>Vergleich beenden</translation>
</message>
<message>
    <source>Ends the comparison; what was found stays</source>
    <translation>Beendet den Vergleich; was gefunden wurde, bleibt</translation>
</message>
<message>
    <source>Folders that could not be read; copies in them are not listed:</source>
    <translation>Nicht lesbare Ordner; Kopien darin sind nicht aufgeführt:</translation>
</message>
<message>
    <source>Close</source>
    <translation>Schließen</translation>
</message>
<message>
    <source>Hides the folders that could not be read</source>
    <translation>Blendet die nicht lesbaren Ordner aus</translation>
</message>
<message>
    <source>Folders that could not be read</source>
    <translation>Nicht lesbare Ordner</translation>
</message>
<message>
    <source>Shows which folders, and why. Copies in them are not listed</source>
    <translation>Zeigt, welche Ordner und warum. Kopien darin sind nicht aufgeführt</translation>
</message>
<message>
    <source>Shows what is known of the selected copy beside the table</source>
    <translation>Zeigt neben der Tabelle, was über die ausgewählte Kopie bekannt ist</translation>
</message>
<message>
    <source>Put back.</source>
    <translation>Zurückgelegt.</translation>
</message>
<message>
    <source>The login items are as before.</source>
    <translation>Die Anmeldeobjekte sind wie zuvor.</translation>
</message>
<message>
    <source>Back in the places.</source>
    <translation>Wieder in den Orten.</translation>
</message>
<message>
    <source>The former icon is back.</source>
    <translation>Das frühere Symbol ist wieder da.</translation>
</message>
<message>
    <source>Moved to the trash.</source>
    <translation>In den Papierkorb gelegt.</translation>
</message>
<message>
    <source>Icon swapped.</source>
    <translation>Symbol getauscht.</translation>
</message>
<message>
    <source>Added to the login items.</source>
    <translation>Startet jetzt bei der Anmeldung.</translation>
</message>
<message>
    <source>Removed from the login items.</source>
    <translation>Startet nicht mehr bei der Anmeldung.</translation>
</message>
<message>
    <source>Removed from the places.</source>
    <translation>Aus den Orten entfernt.</translation>
</message>
<message>
    <source>Deleted for good.</source>
    <translation>Endgültig gelöscht.</translation>
</message>
<message>
    <source>The copy could not be deleted: %@</source>
    <translation>Die Kopie ließ sich nicht löschen: %@</translation>
</message>
<message>
    <source>The copy has quit.</source>
    <translation>Die Kopie ist beendet.</translation>
</message>
<message>
    <source>More actions</source>
    <translation>Weitere Aktionen</translation>
</message>
<message>
    <source>Keyboard shortcuts</source>
    <translation>Tastenkürzel</translation>
</message>
<message>
    <source>Keyboard Shortcuts</source>
    <translation>Tastenkürzel</translation>
</message>
<message>
    <source>Menu</source>
    <translation>Menü</translation>
</message>
<message>
    <source>Command</source>
    <translation>Befehl</translation>
</message>
<message>
    <source>Keys</source>
    <translation>Tasten</translation>
</message>
<message>
    <source>About %1</source>
    <translation>Über %1</translation>
</message>
<message>
    <source>%1, version %2</source>
    <translation>%1, Version %2</translation>
</message>
<message>
    <source>Sort by %1</source>
    <translation>Nach %1 sortieren</translation>
</message>
<message>
    <source>That could not be undone: %@</source>
    <translation>Das ließ sich nicht rückgängig machen: %@</translation>
</message>
<message>
    <source>The login items could not be read: %@</source>
    <translation>Die Anmeldeobjekte waren nicht lesbar: %@</translation>
</message>
<message>
    <source>The places could not be read: %@</source>
    <translation>Die Orte waren nicht lesbar: %@</translation>
</message>
<message>
    <source>The login items could not be changed: %@</source>
    <translation>Die Anmeldeobjekte ließen sich nicht ändern: %@</translation>
</message>
<message>
    <source>The places could not be changed: %@</source>
    <translation>Die Orte ließen sich nicht ändern: %@</translation>
</message>
<message>
    <source>Not known: %@</source>
    <translation>Nicht bekannt: %@</translation>
</message>
<message>
    <source>The file is damaged</source>
    <translation>Die Datei ist beschädigt</translation>
</message>
<message>
    <source>The places in it cannot be used as they are written</source>
    <translation>Die Orte darin lassen sich so, wie sie geschrieben sind, nicht verwenden</translation>
</message>
<message>
    <source>Another program has changed the file</source>
    <translation>Ein anderes Programm hat die Datei geändert</translation>
</message>
<message>
    <source>The item cannot be moved to the trash</source>
    <translation>Das Objekt kann nicht in den Papierkorb gelegt werden</translation>
</message>
<message>
    <source>It is the trash, or holds it</source>
    <translation>Es ist der Papierkorb oder enthält ihn</translation>
</message>
<message>
    <source>It is in the trash</source>
    <translation>Es liegt im Papierkorb</translation>
</message>
<message>
    <source>A volume is mounted in it</source>
    <translation>Darin ist ein Volume eingehängt</translation>
</message>
<message>
    <source>It is the root of all volumes</source>
    <translation>Es ist die Wurzel aller Volumes</translation>
</message>
<message>
    <source>A volume is mounted there</source>
    <translation>Dort ist ein Volume eingehängt</translation>
</message>
<message>
    <source>It holds the trash</source>
    <translation>Es enthält den Papierkorb</translation>
</message>
<message>
    <source>the item is now at %@</source>
    <translation>das Objekt ist jetzt hier: %@</translation>
</message>
<message>
    <source>Whether the item is in the trash cannot be found out</source>
    <translation>Ob das Objekt im Papierkorb liegt, ist nicht festzustellen</translation>
</message>
<message>
    <source>The item cannot be deleted from the trash</source>
    <translation>Das Objekt kann nicht aus dem Papierkorb gelöscht werden</translation>
</message>
<message>
    <source>The volume has no trash that can be used</source>
    <translation>Das Volume hat keinen brauchbaren Papierkorb</translation>
</message>
<message>
    <source>The item is locked</source>
    <translation>Das Objekt ist geschützt</translation>
</message>
<message>
    <source>Another item was moved in its stead, and is now at %@</source>
    <translation>Statt seiner wurde ein anderes bewegt; das ist jetzt hier: %@</translation>
</message>
<message>
    <source>The item cannot be put back</source>
    <translation>Das Objekt kann nicht zurückgelegt werden</translation>
</message>
<message>
    <source>Another item is at %@</source>
    <translation>Dort liegt schon etwas anderes: %@</translation>
</message>
<message>
    <source>It is not in the trash</source>
    <translation>Es liegt nicht im Papierkorb</translation>
</message>
<message>
    <source>Nothing tells where it came from</source>
    <translation>Es ist nicht verzeichnet, woher es kam</translation>
</message>
<message>
    <source>the file beside it is now at %@</source>
    <translation>die Datei daneben ist jetzt hier: %@</translation>
</message>
<message>
    <source>Operation not permitted</source>
    <translation>Der Vorgang ist nicht erlaubt</translation>
</message>
<message>
    <source>No such file or directory</source>
    <translation>Datei oder Ordner nicht gefunden</translation>
</message>
<message>
    <source>Interrupted system call</source>
    <translation>Unterbrochener Systemaufruf</translation>
</message>
<message>
    <source>Input/output error</source>
    <translation>Ein-/Ausgabefehler</translation>
</message>
<message>
    <source>No such device or address</source>
    <translation>Gerät oder Adresse nicht gefunden</translation>
</message>
<message>
    <source>Argument list too long</source>
    <translation>Die Argumentliste ist zu lang</translation>
</message>
<message>
    <source>Exec format error</source>
    <translation>Kein ausführbares Programm</translation>
</message>
<message>
    <source>Resource temporarily unavailable</source>
    <translation>Zurzeit nicht verfügbar</translation>
</message>
<message>
    <source>Cannot allocate memory</source>
    <translation>Nicht genug Arbeitsspeicher</translation>
</message>
<message>
    <source>Permission denied</source>
    <translation>Keine Berechtigung</translation>
</message>
<message>
    <source>Device or resource busy</source>
    <translation>Gerät oder Objekt wird gerade benutzt</translation>
</message>
<message>
    <source>File exists</source>
    <translation>Die Datei existiert bereits</translation>
</message>
<message>
    <source>Invalid cross-device link</source>
    <translation>Nicht von einem Volume zum anderen möglich</translation>
</message>
<message>
    <source>No such device</source>
    <translation>Gerät nicht gefunden</translation>
</message>
<message>
    <source>Not a directory</source>
    <translation>Kein Ordner</translation>
</message>
<message>
    <source>Is a directory</source>
    <translation>Ein Ordner</translation>
</message>
<message>
    <source>Invalid argument</source>
    <translation>Ungültiges Argument</translation>
</message>
<message>
    <source>Too many open files in system</source>
    <translation>Zu viele offene Dateien im System</translation>
</message>
<message>
    <source>Too many open files</source>
    <translation>Zu viele offene Dateien</translation>
</message>
<message>
    <source>Text file busy</source>
    <translation>Das Programm läuft gerade</translation>
</message>
<message>
    <source>File too large</source>
    <translation>Die Datei ist zu groß</translation>
</message>
<message>
    <source>No space left on device</source>
    <translation>Kein Platz mehr auf dem Volume</translation>
</message>
<message>
    <source>Read-only file system</source>
    <translation>Das Volume kann nur gelesen werden</translation>
</message>
<message>
    <source>Too many links</source>
    <translation>Zu viele Verweise</translation>
</message>
<message>
    <source>File name too long</source>
    <translation>Der Dateiname ist zu lang</translation>
</message>
<message>
    <source>Directory not empty</source>
    <translation>Der Ordner ist nicht leer</translation>
</message>
<message>
    <source>Too many levels of symbolic links</source>
    <translation>Zu viele symbolische Links hintereinander</translation>
</message>
<message>
    <source>No data available</source>
    <translation>Keine Daten vorhanden</translation>
</message>
<message>
    <source>Network is unreachable</source>
    <translation>Das Netzwerk ist nicht erreichbar</translation>
</message>
<message>
    <source>Transport endpoint is not connected</source>
    <translation>Keine Verbindung</translation>
</message>
<message>
    <source>Operation not supported</source>
    <translation>Der Vorgang wird nicht unterstützt</translation>
</message>
<message>
    <source>Connection timed out</source>
    <translation>Zeitüberschreitung der Verbindung</translation>
</message>
<message>
    <source>Connection refused</source>
    <translation>Verbindung abgelehnt</translation>
</message>
<message>
    <source>Host is down</source>
    <translation>Der Rechner ist ausgeschaltet</translation>
</message>
<message>
    <source>No route to host</source>
    <translation>Der Rechner ist nicht erreichbar</translation>
</message>
<message>
    <source>Stale file handle</source>
    <translation>Die Datei gibt es auf dem Server nicht mehr</translation>
</message>
<message>
    <source>Structure needs cleaning</source>
    <translation>Das Dateisystem muss repariert werden</translation>
</message>
<message>
    <source>Remote I/O error</source>
    <translation>Ein-/Ausgabefehler auf dem Server</translation>
</message>
<message>
    <source>Disk quota exceeded</source>
    <translation>Das Kontingent auf dem Volume ist erschöpft</translation>
</message>
<message>
    <source>Required key not available</source>
    <translation>Der nötige Schlüssel fehlt</translation>
</message>
<message>
    <source>%@ of &quot;%@&quot;: %@</source>
    <translation>%@ von „%@“: %@</translation>
</message>
<message>
    <source>It cannot be started any more</source>
    <translation>Es kann nicht mehr gestartet werden</translation>
</message>
<message>
    <source>In the trash</source>
    <translation>Im Papierkorb</translation>
</message>
<message>
    <source>it is in the trash, and can be restored</source>
    <translation>sie liegt im Papierkorb und kann mit „restore“ zurückgelegt werden</translation>
</message>
<message>
    <source>Copyright © 2026 The Framekeeper authors. Released under the MIT License, without any warranty.</source>
    <translation>Copyright © 2026 The Framekeeper authors. Veröffentlicht unter der MIT-Lizenz, ohne jede Gewährleistung.</translation>
</message>
<message>
    <source>there are too many places</source>
    <translation>es sind zu viele Orte</translation>
</message>
<message>
    <source>there is no such entry</source>
    <translation>diesen Eintrag gibt es nicht</translation>
</message>
<message>
    <source>the entry cannot be taken out</source>
    <translation>der Eintrag kann nicht herausgenommen werden</translation>
</message>
<message>
    <source>the entry cannot be put back</source>
    <translation>der Eintrag kann nicht zurückgelegt werden</translation>
</message>
<message>
    <source>there is no such place</source>
    <translation>diesen Ort gibt es nicht</translation>
</message>
<message>
    <source>it is not in UTF-8</source>
    <translation>sie ist nicht in UTF-8</translation>
</message>
<message>
    <source>it defines entities</source>
    <translation>sie definiert Entitäten</translation>
</message>
<message>
    <source>elements are nested too deep</source>
    <translation>Elemente sind zu tief verschachtelt</translation>
</message>
<message>
    <source>it is not a list of bookmarks</source>
    <translation>sie ist keine Liste von Lesezeichen</translation>
</message>
<message>
    <source>a tag has too many attributes</source>
    <translation>ein Tag hat zu viele Attribute</translation>
</message>
<message>
    <source>its elements cannot be told apart</source>
    <translation>ihre Elemente sind nicht zu unterscheiden</translation>
</message>
</context>
</TS>
