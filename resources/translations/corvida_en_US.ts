<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>AboutAppWidget</name>
    <message>
        <source>Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>built on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>-bit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open app manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open API in browser</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ChangeLog</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open change log</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>IP address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feedback</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Developers</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CorvidaSettings</name>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>ColorTheme</source>
        <translation>Colour theme</translation>
    </message>
    <message>
        <source>PressureLimit</source>
        <translation>Pressure limits</translation>
    </message>
    <message>
        <source>VisualScale</source>
        <translation>Horizontal scale</translation>
    </message>
    <message>
        <source>PulseAxisLimit</source>
        <translation>Vertical scale</translation>
    </message>
    <message>
        <source>StartFullscreen</source>
        <translation>Start full screen</translation>
    </message>
    <message>
        <source>ExportBehavior</source>
        <translation>After export</translation>
    </message>
    <message>
        <source>ViewMode</source>
        <translation>Device view</translation>
    </message>
    <message>
        <source>DebugMode</source>
        <translation>Debug mode</translation>
    </message>
    <message>
        <source>UseVirtualCorvida</source>
        <translation>Simulated units</translation>
    </message>
    <message>
        <source>ShowDisconnectedDevices</source>
        <translation>Show disconnected devices</translation>
    </message>
    <message>
        <source>SaveRawData</source>
        <translation>Save raw data</translation>
    </message>
    <message>
        <source>en_US</source>
        <translation>English</translation>
    </message>
    <message>
        <source>ru_RU</source>
        <translation>Русский</translation>
    </message>
    <message>
        <source>System</source>
        <translation>As the system</translation>
    </message>
    <message>
        <source>Light</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dark</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pressure_300_75</source>
        <translation>300 → 75 mmHg</translation>
    </message>
    <message>
        <source>Pressure_240_60</source>
        <translation>240 → 60 mmHg</translation>
    </message>
    <message>
        <source>Pressure_200_50</source>
        <translation>200 → 50 mmHg</translation>
    </message>
    <message>
        <source>Pressure_160_40</source>
        <translation>160 → 40 mmHg</translation>
    </message>
    <message>
        <source>Pressure_120_30</source>
        <translation>120 → 30 mmHg</translation>
    </message>
    <message>
        <source>Pressure_100_25</source>
        <translation>100 → 25 mmHg</translation>
    </message>
    <message>
        <source>Scale_10</source>
        <translation>10 s</translation>
    </message>
    <message>
        <source>Scale_20</source>
        <translation>20 s</translation>
    </message>
    <message>
        <source>Scale_30</source>
        <translation>30 s</translation>
    </message>
    <message>
        <source>Scale_60</source>
        <translation>60 s</translation>
    </message>
    <message>
        <source>Scale_90</source>
        <translation>90 s</translation>
    </message>
    <message>
        <source>Scale_120</source>
        <translation>120 s</translation>
    </message>
    <message>
        <source>PulseAxis_1_800_m900</source>
        <translation>-0.9 … 1.8</translation>
    </message>
    <message>
        <source>PulseAxis_1_200_m600</source>
        <translation>-0.6 … 1.2</translation>
    </message>
    <message>
        <source>PulseAxis_1_000_m500</source>
        <translation>-0.5 … 1.0</translation>
    </message>
    <message>
        <source>PulseAxis_0_800_m400</source>
        <translation>-0.4 … 0.8</translation>
    </message>
    <message>
        <source>PulseAxis_0_600_m300</source>
        <translation>-0.3 … 0.6</translation>
    </message>
    <message>
        <source>PulseAxis_0_400_m200</source>
        <translation>-0.2 … 0.4</translation>
    </message>
    <message>
        <source>PulseAxis_0_200_m100</source>
        <translation>-0.1 … 0.2</translation>
    </message>
    <message>
        <source>OnExport_OpenFile</source>
        <translation>Open the file</translation>
    </message>
    <message>
        <source>OnExport_OpenFolder</source>
        <translation>Open the folder</translation>
    </message>
    <message>
        <source>OnExport_DoNothing</source>
        <translation>Do nothing</translation>
    </message>
    <message>
        <source>View_Grid</source>
        <translation>Grid</translation>
    </message>
    <message>
        <source>View_Tabs</source>
        <translation>Tabs</translation>
    </message>
</context>
<context>
    <name>Generic</name>
    <message>
        <source>New version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Restore default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvida</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DebugMode</source>
        <translation>Debug mode</translation>
    </message>
    <message>
        <source>Language change</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To translate the app to the other language a restart is required. 
Restart now?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not now</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>New experiment in database</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageAboutApp</name>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageDatabase</name>
    <message>
        <source>Records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Viewing, recalculating, importing and exporting records are not available in this version yet. The recordings in the records folder are listed below.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reload records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open in explorer</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageExperimentMulti</name>
    <message>
        <source>Measuring units</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No devices found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulated unit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>serial number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Live measurement is not available in this version yet. The units the program finds are listed below; they cannot be turned on or measured from this window.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageSettings</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
