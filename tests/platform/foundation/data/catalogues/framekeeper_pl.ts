<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pl" sourcelanguage="en">
<context>
<name>Framekeeper</name>
<message numerus="yes">
    <source>%n copies</source>
    <translation><numerusform>%n kopia</numerusform><numerusform>%n kopie</numerusform><numerusform>%n kopii</numerusform></translation>
</message>
<message>
    <source>Café %@</source>
    <translation>Kawiarnia %@</translation>
</message>
</context>
</TS>
