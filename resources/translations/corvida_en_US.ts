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
    <message>
        <source>Licence</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AcceptanceRules</name>
    <message>
        <source>No pulse before inflation</source>
        <translation>No pulse before inflation</translation>
    </message>
    <message>
        <source>No systolic point found</source>
        <translation>No systolic point found</translation>
    </message>
    <message>
        <source>No diastolic point found</source>
        <translation>No diastolic point found</translation>
    </message>
    <message>
        <source>No heart rate found</source>
        <translation>No heart rate found</translation>
    </message>
    <message>
        <source>Heart rate %1 bpm outside %2 to %3</source>
        <translation>Heart rate %1 bpm outside %2 to %3</translation>
    </message>
    <message>
        <source>SBP %1 mmHg outside %2 to %3</source>
        <translation>SBP %1 mmHg outside %2 to %3</translation>
    </message>
    <message>
        <source>DBP %1 mmHg outside %2 to %3</source>
        <translation>DBP %1 mmHg outside %2 to %3</translation>
    </message>
    <message>
        <source>SBP only %1 mmHg above DBP (at least %2 needed)</source>
        <translation>SBP only %1 mmHg above DBP (at least %2 needed)</translation>
    </message>
    <message>
        <source>Irregular beats (%1 %), the animal probably moved</source>
        <translation>Irregular beats (%1 %), the animal probably moved</translation>
    </message>
</context>
<context>
    <name>AnimalHistoryPlot</name>
    <message>
        <source>No sessions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SBP and DBP, mmHg (mean ± SD)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heart rate, bpm</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AnimalView</name>
    <message>
        <source>Print report…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The animal&apos;s sessions as a PDF: the plot and one line per session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The animal whose sessions are shown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <translation type="unfinished">Date</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation type="unfinished">Accepted</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Flags</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ComCorvidaDevice</name>
    <message>
        <source>Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Produced</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CorvidaDeviceView</name>
    <message>
        <source>Corvida device found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvida device not found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turn on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start the device and turn on data acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turn off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop data acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Measure</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start pressure pumping and start recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Abort</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Abort pressure pumping and stop recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save record</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rodent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Comment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Включить</source>
        <translation>Turn on</translation>
    </message>
    <message>
        <source>Вкл</source>
        <translation>On</translation>
    </message>
    <message>
        <source>Выключить</source>
        <translation>Turn off</translation>
    </message>
    <message>
        <source>Выкл</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>Измерение</source>
        <translation>Measure</translation>
    </message>
    <message>
        <source>Изм</source>
        <translation>Meas.</translation>
    </message>
    <message>
        <source>Прервать</source>
        <translation>Abort</translation>
    </message>
    <message>
        <source>Стоп</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>There is no records folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Запись не сохранена!</source>
        <translation>The record was not saved!</translation>
    </message>
    <message>
        <source>Recorded file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and start a new recording?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Record not saved</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The link to the unit was lost. What was recorded is kept; Corvida reconnects the unit by itself.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The measurement reached its limit of %1 minutes and was stopped. What was recorded is kept and can be saved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The unit&apos;s pressure calibration was not accepted: pressures are sensor values, not mmHg. The record is marked as not calibrated.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the measurement has not been saved yet</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CorvidaExperiment</name>
    <message>
        <source>the recording cannot be read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The record could not be written to</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accepted by the operator</source>
        <translation>Accepted by the operator</translation>
    </message>
    <message>
        <source>Rejected by the operator</source>
        <translation>Rejected by the operator</translation>
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
        <source>SimulatedAnimal</source>
        <translation>Simulated animal</translation>
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
        <source>SessionAcclimationCycles</source>
        <translation>Session: acclimation cycles</translation>
    </message>
    <message>
        <source>SessionMeasurementCycles</source>
        <translation>Session: measurement cycles</translation>
    </message>
    <message>
        <source>SessionInterval</source>
        <translation>Session: pause between cycles, s</translation>
    </message>
    <message>
        <source>SessionPulseWait</source>
        <translation>Session: wait for a pulse, s</translation>
    </message>
    <message>
        <source>SessionPulseAmplitude</source>
        <translation>Session: least pulse height</translation>
    </message>
    <message>
        <source>SessionHeartRateMin</source>
        <translation>Accept: lowest heart rate, bpm</translation>
    </message>
    <message>
        <source>SessionHeartRateMax</source>
        <translation>Accept: highest heart rate, bpm</translation>
    </message>
    <message>
        <source>SessionSBPMin</source>
        <translation>Accept: lowest SBP, mmHg</translation>
    </message>
    <message>
        <source>SessionSBPMax</source>
        <translation>Accept: highest SBP, mmHg</translation>
    </message>
    <message>
        <source>SessionDBPMin</source>
        <translation>Accept: lowest DBP, mmHg</translation>
    </message>
    <message>
        <source>SessionDBPMax</source>
        <translation>Accept: highest DBP, mmHg</translation>
    </message>
    <message>
        <source>SessionPulsePressureMin</source>
        <translation>Accept: least SBP − DBP, mmHg</translation>
    </message>
    <message>
        <source>SessionIrregularBeatsMax</source>
        <translation>Accept: most irregular beats, %</translation>
    </message>
    <message>
        <source>SessionMinAccepted</source>
        <translation>Session: least accepted cycles</translation>
    </message>
    <message>
        <source>SessionSBPSDMax</source>
        <translation>Session: largest SD of SBP, mmHg</translation>
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
    <message>
        <source>mouse</source>
        <translation>Mouse</translation>
    </message>
    <message>
        <source>rat</source>
        <translation>Rat</translation>
    </message>
    <message>
        <source>hypertensive-rat</source>
        <translation>Hypertensive rat</translation>
    </message>
</context>
<context>
    <name>DimensionRR</name>
    <message>
        <source>BPM</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EDFReader</name>
    <message>
        <source>Duration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sampling rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Subject</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start time</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExperimentViewer</name>
    <message>
        <source>s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Amplitude</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Peaks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Place SBP marker here</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Place DBP marker here</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recalculate experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Markers placed by</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choosing the other way places the markers again with it; markers placed by hand stay</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Markers kept where they were: they were placed by hand or during the measurement. Recalculate to have them placed the chosen way.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Generic</name>
    <message>
        <source>None</source>
        <translation>None</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>MAP</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Cycle</translation>
    </message>
    <message>
        <source>Acclimation</source>
        <translation>Acclimation</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Accepted</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Reason</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
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
    <message>
        <source>Pressure</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>mmHg</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Photoplethysmogram</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PPG</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pressure limits</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Suggestions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Horizontal scale</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical scale</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>for record</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error saving</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid sampling rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Experiment is too short</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pulse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>bpm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rodent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Comment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sampling rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hz</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Title</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>sensor units, not calibrated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not calibrated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heart rate</source>
        <translation type="unfinished">Heart rate</translation>
    </message>
    <message>
        <source>Refined</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Documented</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Method</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>HeartRateWidget</name>
    <message>
        <source>Outside the %1–%2 BPM a rat&apos;s or mouse&apos;s heart beats at: check the sensor and the animal.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Only %n beat(s) found in the last 3 seconds: too few for a steady rate.</source>
        <translation>
            <numerusform>Only %n beat found in the last 3 seconds: too few for a steady rate.</numerusform>
            <numerusform>Only %n beats found in the last 3 seconds: too few for a steady rate.</numerusform>
        </translation>
    </message>
    <message>
        <source>No heart rate: no regular pulse was found in the last 3 seconds.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Uncertain heart rate.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heart rate over the last 3 seconds.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>New experiment in database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and restart Corvida now?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and close Corvida?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last measurements of %1 have not been saved. Discard them and restart Corvida now?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last measurements of %1 have not been saved. Discard them and close Corvida?</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MethodComboBox</name>
    <message>
        <source>The long-standing way: SBP at the first beat of the returning regular pulse, DBP where the growth of the pulse amplitude bends into its plateau</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A straight line through the rising pulse amplitudes: SBP where it leaves the occluded level, DBP where it reaches the plateau</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MultiExperimentViewer</name>
    <message>
        <source>s</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageAboutApp</name>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>proprietary, all rights reserved</source>
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
        <source>Reload records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open in explorer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import record</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recalculate experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove experiments</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the records folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Importing records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recalculating records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exporting records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sessions</source>
        <translation type="unfinished">Sessions</translation>
    </message>
    <message>
        <source>Animal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recover recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print report</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PDF files (*.pdf)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageExperimentMulti</name>
    <message>
        <source>No devices found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Horizontal scale</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical scale</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows devices in grid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shows devices in tabs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start all available devices and turn on data acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop data acquisition for all available devices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Begin pressure pumping and recording for all started devices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Abort pressure pumping and stop record for all available devices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show experiment tips and recommendations</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start a session on all units</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PageSettings</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How new records place their SBP and DBP markers. A record keeps its own way; it can be changed in the record&apos;s viewer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Marker detection for new records</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PulseIndicator</name>
    <message>
        <source>Pulse OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Regular beats at a rodent&apos;s rate: a cuff cycle can measure this pulse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No pulse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No steady pulse: check the tail in the sensor and warm the animal</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordDatabase</name>
    <message>
        <source>The recording cannot be read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The record&apos;s properties cannot be read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>was imported as</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corvida records</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot move to the trash</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove selected experiment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>selected experiments</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot read the recording of</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recalculate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All blood pressure data
in this experiment will be reset.
Continue?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An interrupted save; the recording is complete and can be recovered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An interrupted save; the recording is incomplete and cannot be recovered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not an interrupted save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot rename</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordExport</name>
    <message>
        <source>Essential data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Summary</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing to export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordPreview</name>
    <message>
        <source>Recalculate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find the blood pressure of the selected records anew</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export to spreadsheet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The first %1 of %2 selected records are shown</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordTableModel</name>
    <message>
        <source>no systolic point found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no diastolic point found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open the record and place the marker by hand, or measure again.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SerialNumberDialog</name>
    <message>
        <source>Today</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Production date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Write</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The serial number could not be written: the unit is not connected.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SessionCatalog</name>
    <message>
        <source>Sessions</source>
        <translation>Sessions</translation>
    </message>
    <message>
        <source>SD</source>
        <translation>SD</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>MAP</translation>
    </message>
    <message>
        <source>Heart rate</source>
        <translation>Heart rate</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Unit</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Accepted</translation>
    </message>
    <message>
        <source>Flag</source>
        <translation>Flag</translation>
    </message>
</context>
<context>
    <name>SessionListView</name>
    <message>
        <source>accepted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>rejected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>by hand</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter by rodent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accept</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Count the selected cycles, whatever the automatic verdict says</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reject</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leave the selected cycles out of the statistics</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Give the selected cycles back to the automatic verdict</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print report…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The session as a PDF: cycles, verdicts, statistics and traces</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation type="unfinished">Cycle</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MAP</source>
        <translation type="unfinished">MAP</translation>
    </message>
    <message>
        <source>HR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SessionPanel</name>
    <message>
        <source>Acclimation %1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycle %1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting for a steady pulse…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pause before the next cycle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Session finished: %1 cycles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unit lost: %1. Finished cycles kept: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>accepted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>acclimation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accepted %1 of %2 · SBP %3 · DBP %4 · MAP %5 mmHg · HR %6 bpm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Run a session: acclimation cycles, then measurement cycles, each after a steady pulse. The arrow changes the counts.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Acclimation cycles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Measurement cycles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Abort session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop the session; the finished cycles are kept</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation type="unfinished">Cycle</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MAP</source>
        <translation type="unfinished">MAP</translation>
    </message>
    <message>
        <source>HR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Result</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SessionReport</name>
    <message>
        <source>Session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Session of %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot write &quot;%1&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blood pressure session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rodent: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(not named)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date: %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unit: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycles: %1 acclimation, %2 of %3 measurement cycles measured</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Acceptance: heart rate %1–%2 bpm, SBP %3–%4 mmHg, DBP %5–%6 mmHg, SBP − DBP at least %7 mmHg, irregular beats at most %8 %</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Result</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation type="unfinished">Cycle</translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MAP</source>
        <translation type="unfinished">MAP</translation>
    </message>
    <message>
        <source>HR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accepted cycles: cuff pressure with the SBP and DBP markers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cycle %1: %2/%3 mmHg, %4 bpm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Printed %1 by %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sessions of %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blood pressure across days</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sessions: %1, from %2 to %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hollow points: flagged sessions. Grey marks: sessions without a mean.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <translation type="unfinished">Date</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation type="unfinished">Unit</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation type="unfinished">Accepted</translation>
    </message>
    <message>
        <source>Flags</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SessionRun</name>
    <message>
        <source>Session aborted during cycle %1; that cycle is not kept</source>
        <translation>Session aborted during cycle %1; that cycle is not kept</translation>
    </message>
    <message>
        <source>Session aborted after %1 cycles</source>
        <translation>Session aborted after %1 cycles</translation>
    </message>
    <message>
        <source>The unit was lost; the session is incomplete</source>
        <translation>The unit was lost; the session is incomplete</translation>
    </message>
    <message>
        <source>The unit stopped sending; the session is incomplete</source>
        <translation>The unit stopped sending; the session is incomplete</translation>
    </message>
    <message>
        <source>The unit did not start cycle %1; the session is incomplete</source>
        <translation>The unit did not start cycle %1; the session is incomplete</translation>
    </message>
    <message>
        <source>Cycle %1 could not be saved: %2. The session stopped; the cycles before it are kept</source>
        <translation>Cycle %1 could not be saved: %2. The session stopped; the cycles before it are kept</translation>
    </message>
    <message>
        <source>Cycle %1 could not be saved in &quot;%2&quot; (is the disk full?). The session stopped; the cycles before it are kept</source>
        <translation>Cycle %1 could not be saved in &quot;%2&quot; (is the disk full?). The session stopped; the cycles before it are kept</translation>
    </message>
    <message>
        <source>The verdict of cycle %1 could not be saved in &quot;%2&quot;. The session stopped; the cycles before it are kept</source>
        <translation>The verdict of cycle %1 could not be saved in &quot;%2&quot;. The session stopped; the cycles before it are kept</translation>
    </message>
</context>
<context>
    <name>SessionStatistics</name>
    <message>
        <source>Incomplete: %1 of %2 cycles measured</source>
        <translation>Incomplete: %1 of %2 cycles measured</translation>
    </message>
    <message>
        <source>Only %1 of %2 cycles accepted (at least %3 needed)</source>
        <translation>Only %1 of %2 cycles accepted (at least %3 needed)</translation>
    </message>
    <message>
        <source>SD of SBP %1 mmHg above %2</source>
        <translation>SD of SBP %1 mmHg above %2</translation>
    </message>
</context>
<context>
    <name>SessionTableModel</name>
    <message>
        <source>Rodent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <translation type="unfinished">Date</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation type="unfinished">Unit</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation type="unfinished">Accepted</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DBP</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MAP</source>
        <translation type="unfinished">MAP</translation>
    </message>
    <message>
        <source>HR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Flag</source>
        <translation type="unfinished">Flag</translation>
    </message>
</context>
<context>
    <name>SettingsFileNotice</name>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read, so Corvida started with its default settings. To keep that file as it is, changes to the settings are not saved in this session. Check who may read the file, then start Corvida again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file %1 was damaged and cannot be replaced. The settings that could be read are in use; changes are not saved in this session.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file was damaged. The settings that could be read are kept; the others are back to their defaults. The damaged file was kept as %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings cannot be saved to %1. Changes made now are lost when Corvida closes. Check that the disk is not full and that the folder may be written to.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SignalViewer</name>
    <message>
        <source>Fit to data: the whole height of the traces in view. Click again for the vertical scale that is set.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SuggestionsWidget</name>
    <message>
        <source>Before conducting an experiment:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heat the rodent properly for at least 10 minutes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do not heat the rodent more than 20-30 minutes to avoid thermal shock.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do not place rodent&apos;s tail on the heating platform.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose the corresponding cuff size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check the cuff&apos;s tidiness</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose the corresponding silicone insert for the sensor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Firmly place the cuff and then the sensor onto rodent&apos;s tail</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&apos;Turn on&apos; the device (without measurement)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the PPG signal should be stable, otherwise heat the rodent or check sensor&apos;s position.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do not start the actual experiment, until the PPG signal is stable in amplitude!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When the PPG signal is stable, press &apos;Measure&apos;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>During a common experiment:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In the beggining the PPG should diminish to zero when rodent&apos;s tail is constricted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When the pressure lowers down - the PPG amplitude should begin to rise (this is the systolic pressure point)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>After a while the PPG amplitude should go to a plateau (the inflection point is the diastolic pressure)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>If the experiment is not as described above - it is invalid. Try:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Heating the rodent if the PPG amplitude is low</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Habitate the rodent to the procedure (in case of tail inflicted artifacts)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Slightly move the cuff and sensor along the tail if the tail is not being constricted (the bones could protect the tail&apos;s blood vessel)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hide the tips (the Suggestions button brings them back)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
