<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>AboutAppWidget</name>
    <message>
        <source>Version</source>
        <translation>Версия</translation>
    </message>
    <message>
        <source>built on</source>
        <translation>сборка от</translation>
    </message>
    <message>
        <source>-bit</source>
        <translation>-бит</translation>
    </message>
    <message>
        <source>Manual</source>
        <translation>Руководство</translation>
    </message>
    <message>
        <source>Open app manual</source>
        <translation>Открыть руководство пользователя</translation>
    </message>
    <message>
        <source>Open API in browser</source>
        <translation>Открыть API в браузере</translation>
    </message>
    <message>
        <source>ChangeLog</source>
        <translation>Список изменений</translation>
    </message>
    <message>
        <source>Open change log</source>
        <translation>Открыть список изменений</translation>
    </message>
    <message>
        <source>IP address</source>
        <translation>IP-адрес</translation>
    </message>
    <message>
        <source>none</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>Feedback</source>
        <translation>Обратная связь</translation>
    </message>
    <message>
        <source>Developers</source>
        <translation>Разработчики</translation>
    </message>
    <message>
        <source>Licence</source>
        <translation>Лицензия</translation>
    </message>
</context>
<context>
    <name>AcceptanceRules</name>
    <message>
        <source>No pulse before inflation</source>
        <translation>Нет пульса перед накачкой</translation>
    </message>
    <message>
        <source>No systolic point found</source>
        <translation>Систолическая точка не найдена</translation>
    </message>
    <message>
        <source>No diastolic point found</source>
        <translation>Диастолическая точка не найдена</translation>
    </message>
    <message>
        <source>No heart rate found</source>
        <translation>Пульс не найден</translation>
    </message>
    <message>
        <source>Heart rate %1 bpm outside %2 to %3</source>
        <translation>Пульс %1 уд/мин вне пределов от %2 до %3</translation>
    </message>
    <message>
        <source>SBP %1 mmHg outside %2 to %3</source>
        <translation>САД %1 мм рт. ст. вне пределов от %2 до %3</translation>
    </message>
    <message>
        <source>DBP %1 mmHg outside %2 to %3</source>
        <translation>ДАД %1 мм рт. ст. вне пределов от %2 до %3</translation>
    </message>
    <message>
        <source>SBP only %1 mmHg above DBP (at least %2 needed)</source>
        <translation>САД выше ДАД лишь на %1 мм рт. ст. (нужно не меньше %2)</translation>
    </message>
    <message>
        <source>Irregular beats (%1 %), the animal probably moved</source>
        <translation>Неровные удары (%1 %), животное, вероятно, двигалось</translation>
    </message>
</context>
<context>
    <name>AnimalHistoryPlot</name>
    <message>
        <source>No sessions</source>
        <translation>Нет сеансов</translation>
    </message>
    <message>
        <source>SBP and DBP, mmHg (mean ± SD)</source>
        <translation>САД и ДАД, мм рт. ст. (среднее ± СО)</translation>
    </message>
    <message>
        <source>Heart rate, bpm</source>
        <translation>ЧСС, уд/мин</translation>
    </message>
</context>
<context>
    <name>AnimalView</name>
    <message>
        <source>The animal whose sessions are shown</source>
        <translation>Животное, чьи сеансы показаны</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принято</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>HR</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Flags</source>
        <translation>Отметки</translation>
    </message>
    <message>
        <source>Print report…</source>
        <translation>Печать отчёта…</translation>
    </message>
    <message>
        <source>The animal&apos;s sessions as a PDF: the plot and one line per session</source>
        <translation>Сеансы животного в PDF: график и по строке на сеанс</translation>
    </message>
</context>
<context>
    <name>ComCorvidaDevice</name>
    <message>
        <source>Port</source>
        <translation>Порт</translation>
    </message>
    <message>
        <source>Produced</source>
        <translation>Изготовлено</translation>
    </message>
</context>
<context>
    <name>CorvidaDeviceView</name>
    <message>
        <source>Corvida device found</source>
        <translation>Устройство Corvida найдено</translation>
    </message>
    <message>
        <source>Corvida device not found</source>
        <translation>Устройство Corvida не найдено</translation>
    </message>
    <message>
        <source>Turn on</source>
        <translation>Включить</translation>
    </message>
    <message>
        <source>Start the device and turn on data acquisition</source>
        <translation>Запустить устройство и включить сбор данных</translation>
    </message>
    <message>
        <source>Turn off</source>
        <translation>Выключить</translation>
    </message>
    <message>
        <source>Stop data acquisition</source>
        <translation>Остановить сбор данных</translation>
    </message>
    <message>
        <source>Measure</source>
        <translation>Измерение</translation>
    </message>
    <message>
        <source>Start pressure pumping and start recording</source>
        <translation>Начать нагнетание давления и запись</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Прервать</translation>
    </message>
    <message>
        <source>Abort pressure pumping and stop recording</source>
        <translation>Прервать нагнетание давления и остановить запись</translation>
    </message>
    <message>
        <source>Save record</source>
        <translation>Сохранить запись</translation>
    </message>
    <message>
        <source>Rodent</source>
        <translation>Животное</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Комментарий</translation>
    </message>
    <message>
        <source>Включить</source>
        <translation>Включить</translation>
    </message>
    <message>
        <source>Вкл</source>
        <translation>Вкл</translation>
    </message>
    <message>
        <source>Выключить</source>
        <translation>Выключить</translation>
    </message>
    <message>
        <source>Выкл</source>
        <translation>Выкл</translation>
    </message>
    <message>
        <source>Измерение</source>
        <translation>Измерение</translation>
    </message>
    <message>
        <source>Изм</source>
        <translation>Изм</translation>
    </message>
    <message>
        <source>Прервать</source>
        <translation>Прервать</translation>
    </message>
    <message>
        <source>Стоп</source>
        <translation>Стоп</translation>
    </message>
    <message>
        <source>There is no records folder.</source>
        <translation>Нет папки записей.</translation>
    </message>
    <message>
        <source>Запись не сохранена!</source>
        <translation>Запись не сохранена!</translation>
    </message>
    <message>
        <source>Recorded file</source>
        <translation>Записанный файл</translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and start a new recording?</source>
        <translation>Последнее измерение %1 не сохранено. Удалить его и начать новую запись?</translation>
    </message>
    <message>
        <source>Record not saved</source>
        <translation>Запись не сохранена</translation>
    </message>
    <message>
        <source>The link to the unit was lost. What was recorded is kept; Corvida reconnects the unit by itself.</source>
        <translation>Связь с прибором потеряна. Записанное сохранено в панели; Corvida сама переподключает прибор.</translation>
    </message>
    <message>
        <source>The measurement reached its limit of %1 minutes and was stopped. What was recorded is kept and can be saved.</source>
        <translation>Измерение достигло предела в %1 минут и остановлено. Записанное сохранено в панели, его можно сохранить.</translation>
    </message>
    <message>
        <source>The unit&apos;s pressure calibration was not accepted: pressures are sensor values, not mmHg. The record is marked as not calibrated.</source>
        <translation>Калибровка давления прибора не принята: давление в единицах датчика, а не в мм рт. ст. Запись помечена как некалиброванная.</translation>
    </message>
    <message>
        <source>the measurement has not been saved yet</source>
        <translation>измерение ещё не сохранено</translation>
    </message>
</context>
<context>
    <name>CorvidaExperiment</name>
    <message>
        <source>the recording cannot be read</source>
        <translation>не удаётся прочитать запись</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>диск заполнен</translation>
    </message>
    <message>
        <source>The record could not be written to</source>
        <translation>Не удалось сохранить запись в файл</translation>
    </message>
    <message>
        <source>Accepted by the operator</source>
        <translation>Принят оператором</translation>
    </message>
    <message>
        <source>Rejected by the operator</source>
        <translation>Отклонён оператором</translation>
    </message>
</context>
<context>
    <name>CorvidaSettings</name>
    <message>
        <source>Language</source>
        <translation>Язык</translation>
    </message>
    <message>
        <source>ColorTheme</source>
        <translation>Цветовая тема</translation>
    </message>
    <message>
        <source>PressureLimit</source>
        <translation>Пределы давления</translation>
    </message>
    <message>
        <source>VisualScale</source>
        <translation>Горизонтальный масштаб</translation>
    </message>
    <message>
        <source>PulseAxisLimit</source>
        <translation>Вертикальный масштаб</translation>
    </message>
    <message>
        <source>StartFullscreen</source>
        <translation>Запускать на весь экран</translation>
    </message>
    <message>
        <source>ExportBehavior</source>
        <translation>После экспорта</translation>
    </message>
    <message>
        <source>ViewMode</source>
        <translation>Вид устройств</translation>
    </message>
    <message>
        <source>DebugMode</source>
        <translation>Режим отладки</translation>
    </message>
    <message>
        <source>UseVirtualCorvida</source>
        <translation>Виртуальные устройства</translation>
    </message>
    <message>
        <source>SimulatedAnimal</source>
        <translation>Виртуальное животное</translation>
    </message>
    <message>
        <source>ShowDisconnectedDevices</source>
        <translation>Показывать отключённые устройства</translation>
    </message>
    <message>
        <source>SaveRawData</source>
        <translation>Сохранять сырые данные</translation>
    </message>
    <message>
        <source>SessionAcclimationCycles</source>
        <translation>Сеанс: циклы привыкания</translation>
    </message>
    <message>
        <source>SessionMeasurementCycles</source>
        <translation>Сеанс: измерительные циклы</translation>
    </message>
    <message>
        <source>SessionInterval</source>
        <translation>Сеанс: пауза между циклами, с</translation>
    </message>
    <message>
        <source>SessionPulseWait</source>
        <translation>Сеанс: ожидание пульса, с</translation>
    </message>
    <message>
        <source>SessionPulseAmplitude</source>
        <translation>Сеанс: наименьшая высота пульса</translation>
    </message>
    <message>
        <source>SessionHeartRateMin</source>
        <translation>Принять: наименьший пульс, уд/мин</translation>
    </message>
    <message>
        <source>SessionHeartRateMax</source>
        <translation>Принять: наибольший пульс, уд/мин</translation>
    </message>
    <message>
        <source>SessionSBPMin</source>
        <translation>Принять: наименьшее САД, мм рт. ст.</translation>
    </message>
    <message>
        <source>SessionSBPMax</source>
        <translation>Принять: наибольшее САД, мм рт. ст.</translation>
    </message>
    <message>
        <source>SessionDBPMin</source>
        <translation>Принять: наименьшее ДАД, мм рт. ст.</translation>
    </message>
    <message>
        <source>SessionDBPMax</source>
        <translation>Принять: наибольшее ДАД, мм рт. ст.</translation>
    </message>
    <message>
        <source>SessionPulsePressureMin</source>
        <translation>Принять: наименьшая разница САД − ДАД, мм рт. ст.</translation>
    </message>
    <message>
        <source>SessionIrregularBeatsMax</source>
        <translation>Принять: наибольшая доля неровных ударов, %</translation>
    </message>
    <message>
        <source>SessionMinAccepted</source>
        <translation>Сеанс: наименьшее число принятых циклов</translation>
    </message>
    <message>
        <source>SessionSBPSDMax</source>
        <translation>Сеанс: наибольшее СО САД, мм рт. ст.</translation>
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
        <translation>Как в системе</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Светлая</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Тёмная</translation>
    </message>
    <message>
        <source>Pressure_300_75</source>
        <translation>300 → 75 мм рт. ст.</translation>
    </message>
    <message>
        <source>Pressure_240_60</source>
        <translation>240 → 60 мм рт. ст.</translation>
    </message>
    <message>
        <source>Pressure_200_50</source>
        <translation>200 → 50 мм рт. ст.</translation>
    </message>
    <message>
        <source>Pressure_160_40</source>
        <translation>160 → 40 мм рт. ст.</translation>
    </message>
    <message>
        <source>Pressure_120_30</source>
        <translation>120 → 30 мм рт. ст.</translation>
    </message>
    <message>
        <source>Pressure_100_25</source>
        <translation>100 → 25 мм рт. ст.</translation>
    </message>
    <message>
        <source>Scale_10</source>
        <translation>10 с</translation>
    </message>
    <message>
        <source>Scale_20</source>
        <translation>20 с</translation>
    </message>
    <message>
        <source>Scale_30</source>
        <translation>30 с</translation>
    </message>
    <message>
        <source>Scale_60</source>
        <translation>60 с</translation>
    </message>
    <message>
        <source>Scale_90</source>
        <translation>90 с</translation>
    </message>
    <message>
        <source>Scale_120</source>
        <translation>120 с</translation>
    </message>
    <message>
        <source>PulseAxis_1_800_m900</source>
        <translation>-0,9 … 1,8</translation>
    </message>
    <message>
        <source>PulseAxis_1_200_m600</source>
        <translation>-0,6 … 1,2</translation>
    </message>
    <message>
        <source>PulseAxis_1_000_m500</source>
        <translation>-0,5 … 1,0</translation>
    </message>
    <message>
        <source>PulseAxis_0_800_m400</source>
        <translation>-0,4 … 0,8</translation>
    </message>
    <message>
        <source>PulseAxis_0_600_m300</source>
        <translation>-0,3 … 0,6</translation>
    </message>
    <message>
        <source>PulseAxis_0_400_m200</source>
        <translation>-0,2 … 0,4</translation>
    </message>
    <message>
        <source>PulseAxis_0_200_m100</source>
        <translation>-0,1 … 0,2</translation>
    </message>
    <message>
        <source>OnExport_OpenFile</source>
        <translation>Открыть файл</translation>
    </message>
    <message>
        <source>OnExport_OpenFolder</source>
        <translation>Открыть папку</translation>
    </message>
    <message>
        <source>OnExport_DoNothing</source>
        <translation>Ничего не делать</translation>
    </message>
    <message>
        <source>View_Grid</source>
        <translation>Сетка</translation>
    </message>
    <message>
        <source>View_Tabs</source>
        <translation>Вкладки</translation>
    </message>
    <message>
        <source>mouse</source>
        <translation>Мышь</translation>
    </message>
    <message>
        <source>rat</source>
        <translation>Крыса</translation>
    </message>
    <message>
        <source>hypertensive-rat</source>
        <translation>Гипертензивная крыса</translation>
    </message>
</context>
<context>
    <name>DimensionRR</name>
    <message>
        <source>BPM</source>
        <translation>уд/мин</translation>
    </message>
</context>
<context>
    <name>EDFReader</name>
    <message>
        <source>Duration</source>
        <translation>Длительность</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Каналы</translation>
    </message>
    <message>
        <source>Sampling rate</source>
        <translation>Частота дискретизации</translation>
    </message>
    <message>
        <source>Subject</source>
        <translation>Субъект</translation>
    </message>
    <message>
        <source>Start time</source>
        <translation>Время начала</translation>
    </message>
</context>
<context>
    <name>ExperimentViewer</name>
    <message>
        <source>s</source>
        <translation>с</translation>
    </message>
    <message>
        <source>Amplitude</source>
        <translation>Амплитуда</translation>
    </message>
    <message>
        <source>Peaks</source>
        <translation>Пики</translation>
    </message>
    <message>
        <source>Place SBP marker here</source>
        <translation>Поставить маркер САД здесь</translation>
    </message>
    <message>
        <source>Place DBP marker here</source>
        <translation>Поставить маркер ДАД здесь</translation>
    </message>
    <message>
        <source>Recalculate experiment</source>
        <translation>Пересчитать эксперимент</translation>
    </message>
    <message>
        <source>Markers placed by</source>
        <translation>Маркеры расставил метод</translation>
    </message>
    <message>
        <source>Choosing the other way places the markers again with it; markers placed by hand stay</source>
        <translation>Выбор другого метода заново расставляет им маркеры; маркеры, поставленные вручную, остаются на месте</translation>
    </message>
    <message>
        <source>Markers kept where they were: they were placed by hand or during the measurement. Recalculate to have them placed the chosen way.</source>
        <translation>Маркеры оставлены на месте: они поставлены вручную или во время измерения. Пересчитайте, чтобы их расставил выбранный метод.</translation>
    </message>
</context>
<context>
    <name>Generic</name>
    <message>
        <source>None</source>
        <translation>Нет</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Цикл</translation>
    </message>
    <message>
        <source>Acclimation</source>
        <translation>Привыкание</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принят</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Причина</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Да</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Нет</translation>
    </message>
    <message>
        <source>New version</source>
        <translation>Новая версия</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Общие</translation>
    </message>
    <message>
        <source>Restore default</source>
        <translation>Вернуть значение по умолчанию</translation>
    </message>
    <message>
        <source>Corvida</source>
        <translation>Corvida</translation>
    </message>
    <message>
        <source>DebugMode</source>
        <translation>Режим отладки</translation>
    </message>
    <message>
        <source>Language change</source>
        <translation>Смена языка</translation>
    </message>
    <message>
        <source>To translate the app to the other language a restart is required. 
Restart now?</source>
        <translation>Чтобы перевести программу на другой язык, нужен перезапуск.
Перезапустить сейчас?</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Not now</source>
        <translation>Не сейчас</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Pressure</source>
        <translation>Давление</translation>
    </message>
    <message>
        <source>mmHg</source>
        <translation>мм рт. ст.</translation>
    </message>
    <message>
        <source>Photoplethysmogram</source>
        <translation>Фотоплетизмограмма</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Время</translation>
    </message>
    <message>
        <source>PPG</source>
        <translation>ФПГ</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Pressure limits</source>
        <translation>Пределы давления</translation>
    </message>
    <message>
        <source>Suggestions</source>
        <translation>Подсказки</translation>
    </message>
    <message>
        <source>Horizontal scale</source>
        <translation>Горизонтальный масштаб</translation>
    </message>
    <message>
        <source>Vertical scale</source>
        <translation>Вертикальный масштаб</translation>
    </message>
    <message>
        <source>Cannot open</source>
        <translation>Не удаётся открыть</translation>
    </message>
    <message>
        <source>for record</source>
        <translation>для записи</translation>
    </message>
    <message>
        <source>Error saving</source>
        <translation>Ошибка сохранения</translation>
    </message>
    <message>
        <source>Invalid sampling rate</source>
        <translation>Неверная частота дискретизации</translation>
    </message>
    <message>
        <source>Experiment is too short</source>
        <translation>Эксперимент слишком короткий</translation>
    </message>
    <message>
        <source>Pulse</source>
        <translation>Пульс</translation>
    </message>
    <message>
        <source>bpm</source>
        <translation>уд/мин</translation>
    </message>
    <message>
        <source>Rodent</source>
        <translation>Животное</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Комментарий</translation>
    </message>
    <message>
        <source>Sampling rate</source>
        <translation>Частота дискретизации</translation>
    </message>
    <message>
        <source>V</source>
        <translation>В</translation>
    </message>
    <message>
        <source>Hz</source>
        <translation>Гц</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Название</translation>
    </message>
    <message>
        <source>sensor units, not calibrated</source>
        <translation>единицы датчика, без калибровки</translation>
    </message>
    <message>
        <source>not calibrated</source>
        <translation>без калибровки</translation>
    </message>
    <message>
        <source>Heart rate</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Refined</source>
        <translation>Уточнённый</translation>
    </message>
    <message>
        <source>Documented</source>
        <translation>Стандартный</translation>
    </message>
    <message>
        <source>Method</source>
        <translation>Метод</translation>
    </message>
</context>
<context>
    <name>HeartRateWidget</name>
    <message>
        <source>Outside the %1–%2 BPM a rat&apos;s or mouse&apos;s heart beats at: check the sensor and the animal.</source>
        <translation>Вне пределов %1–%2 уд/мин, в которых бьётся сердце крысы или мыши: проверьте датчик и животное.</translation>
    </message>
    <message numerus="yes">
        <source>Only %n beat(s) found in the last 3 seconds: too few for a steady rate.</source>
        <translation>
            <numerusform>Найден лишь %n удар за последние 3 секунды: слишком мало для устойчивой ЧСС.</numerusform>
            <numerusform>Найдено лишь %n удара за последние 3 секунды: слишком мало для устойчивой ЧСС.</numerusform>
            <numerusform>Найдено лишь %n ударов за последние 3 секунды: слишком мало для устойчивой ЧСС.</numerusform>
        </translation>
    </message>
    <message>
        <source>No heart rate: no regular pulse was found in the last 3 seconds.</source>
        <translation>Пульса нет: за последние 3 секунды не найдено ровного пульса.</translation>
    </message>
    <message>
        <source>Uncertain heart rate.</source>
        <translation>Недостоверная ЧСС.</translation>
    </message>
    <message>
        <source>Heart rate over the last 3 seconds.</source>
        <translation>ЧСС за последние 3 секунды.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>New experiment in database</source>
        <translation>Новый эксперимент в базе</translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and restart Corvida now?</source>
        <translation>Последнее измерение %1 не сохранено. Отбросить его и перезапустить Corvida сейчас?</translation>
    </message>
    <message>
        <source>The last measurement of %1 has not been saved. Discard it and close Corvida?</source>
        <translation>Последнее измерение %1 не сохранено. Отбросить его и закрыть Corvida?</translation>
    </message>
    <message>
        <source>The last measurements of %1 have not been saved. Discard them and restart Corvida now?</source>
        <translation>Последние измерения %1 не сохранены. Отбросить их и перезапустить Corvida сейчас?</translation>
    </message>
    <message>
        <source>The last measurements of %1 have not been saved. Discard them and close Corvida?</source>
        <translation>Последние измерения %1 не сохранены. Отбросить их и закрыть Corvida?</translation>
    </message>
</context>
<context>
    <name>MethodComboBox</name>
    <message>
        <source>The long-standing way: SBP at the first beat of the returning regular pulse, DBP where the growth of the pulse amplitude bends into its plateau</source>
        <translation>Прежний метод: САД — первый удар возвращающегося регулярного пульса, ДАД — точка, где рост амплитуды пульса переходит в плато</translation>
    </message>
    <message>
        <source>A straight line through the rising pulse amplitudes: SBP where it leaves the occluded level, DBP where it reaches the plateau</source>
        <translation>Прямая через нарастающие амплитуды пульса: САД — где она отходит от уровня пережатой артерии, ДАД — где она достигает плато</translation>
    </message>
</context>
<context>
    <name>MultiExperimentViewer</name>
    <message>
        <source>s</source>
        <translation>с</translation>
    </message>
</context>
<context>
    <name>PageAboutApp</name>
    <message>
        <source>About</source>
        <translation>О программе</translation>
    </message>
    <message>
        <source>proprietary, all rights reserved</source>
        <translation>проприетарная, все права защищены</translation>
    </message>
</context>
<context>
    <name>PageDatabase</name>
    <message>
        <source>Records</source>
        <translation>Записи</translation>
    </message>
    <message>
        <source>Reload records</source>
        <translation>Обновить список записей</translation>
    </message>
    <message>
        <source>Open in explorer</source>
        <translation>Открыть в проводнике</translation>
    </message>
    <message>
        <source>Import record</source>
        <translation>Импортировать запись</translation>
    </message>
    <message>
        <source>Recalculate experiment</source>
        <translation>Пересчитать эксперимент</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Показать в папке</translation>
    </message>
    <message>
        <source>Remove experiment</source>
        <translation>Удалить эксперимент</translation>
    </message>
    <message>
        <source>Remove experiments</source>
        <translation>Удалить эксперименты</translation>
    </message>
    <message>
        <source>Reading the records folder</source>
        <translation>Чтение папки записей</translation>
    </message>
    <message>
        <source>Importing records</source>
        <translation>Импорт записей</translation>
    </message>
    <message>
        <source>Import warning</source>
        <translation>Предупреждение об импорте</translation>
    </message>
    <message>
        <source>Recalculating records</source>
        <translation>Пересчёт записей</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспорт</translation>
    </message>
    <message>
        <source>Exporting records</source>
        <translation>Экспорт записей</translation>
    </message>
    <message>
        <source>Recover recording</source>
        <translation>Восстановить запись</translation>
    </message>
    <message>
        <source>Sessions</source>
        <translation>Сеансы</translation>
    </message>
    <message>
        <source>Animal</source>
        <translation>Животное</translation>
    </message>
    <message>
        <source>Print report</source>
        <translation>Печать отчёта</translation>
    </message>
    <message>
        <source>PDF files (*.pdf)</source>
        <translation>Файлы PDF (*.pdf)</translation>
    </message>
</context>
<context>
    <name>PageExperimentMulti</name>
    <message>
        <source>No devices found</source>
        <translation>Устройства не найдены</translation>
    </message>
    <message>
        <source>Experiment</source>
        <translation>Эксперимент</translation>
    </message>
    <message>
        <source>Horizontal scale</source>
        <translation>Горизонтальный масштаб</translation>
    </message>
    <message>
        <source>Vertical scale</source>
        <translation>Вертикальный масштаб</translation>
    </message>
    <message>
        <source>Shows devices in grid</source>
        <translation>Показать устройства сеткой</translation>
    </message>
    <message>
        <source>Shows devices in tabs</source>
        <translation>Показать устройства во вкладках</translation>
    </message>
    <message>
        <source>Start all available devices and turn on data acquisition</source>
        <translation>Запустить все доступные устройства и включить сбор данных</translation>
    </message>
    <message>
        <source>Stop data acquisition for all available devices</source>
        <translation>Остановить сбор данных на всех доступных устройствах</translation>
    </message>
    <message>
        <source>Begin pressure pumping and recording for all started devices</source>
        <translation>Начать нагнетание давления и запись на всех запущенных устройствах</translation>
    </message>
    <message>
        <source>Abort pressure pumping and stop record for all available devices</source>
        <translation>Прервать нагнетание давления и остановить запись на всех доступных устройствах</translation>
    </message>
    <message>
        <source>Start a session on all units</source>
        <translation>Начать сеанс на всех приборах</translation>
    </message>
    <message>
        <source>Show experiment tips and recommendations</source>
        <translation>Показать советы и рекомендации по эксперименту</translation>
    </message>
</context>
<context>
    <name>PageSettings</name>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>How new records place their SBP and DBP markers. A record keeps its own way; it can be changed in the record&apos;s viewer.</source>
        <translation>Каким методом новые записи расставляют маркеры САД и ДАД. Запись сохраняет свой метод; его можно сменить в просмотре записи.</translation>
    </message>
    <message>
        <source>Marker detection for new records</source>
        <translation>Поиск маркеров для новых записей</translation>
    </message>
</context>
<context>
    <name>PulseIndicator</name>
    <message>
        <source>Pulse OK</source>
        <translation>Пульс есть</translation>
    </message>
    <message>
        <source>Regular beats at a rodent&apos;s rate: a cuff cycle can measure this pulse</source>
        <translation>Ровные удары с частотой, обычной для грызуна: такой пульс можно измерить манжетой</translation>
    </message>
    <message>
        <source>No pulse</source>
        <translation>Нет пульса</translation>
    </message>
    <message>
        <source>No steady pulse: check the tail in the sensor and warm the animal</source>
        <translation>Нет устойчивого пульса: проверьте положение хвоста в датчике и согрейте животное</translation>
    </message>
</context>
<context>
    <name>RecordDatabase</name>
    <message>
        <source>The recording cannot be read</source>
        <translation>Не удаётся прочитать запись</translation>
    </message>
    <message>
        <source>The record&apos;s properties cannot be read</source>
        <translation>Не удаётся прочитать свойства записи</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Файл</translation>
    </message>
    <message>
        <source>was imported as</source>
        <translation>импортирован как</translation>
    </message>
    <message>
        <source>Import records</source>
        <translation>Импорт записей</translation>
    </message>
    <message>
        <source>Corvida records</source>
        <translation>Записи Corvida</translation>
    </message>
    <message>
        <source>Cannot move to the trash</source>
        <translation>Не удаётся переместить в корзину</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Remove selected experiment</source>
        <translation>Удалить выбранный эксперимент</translation>
    </message>
    <message>
        <source>selected experiments</source>
        <translation>выбранных экспериментов</translation>
    </message>
    <message>
        <source>Cannot read the recording of</source>
        <translation>Не удаётся прочитать запись</translation>
    </message>
    <message>
        <source>Recalculate</source>
        <translation>Пересчитать</translation>
    </message>
    <message>
        <source>All blood pressure data
in this experiment will be reset.
Continue?</source>
        <translation>Все данные об артериальном давлении
в этом эксперименте будут сброшены.
Продолжить?</translation>
    </message>
    <message>
        <source>An interrupted save; the recording is complete and can be recovered</source>
        <translation>Прерванное сохранение; запись полная, её можно восстановить</translation>
    </message>
    <message>
        <source>An interrupted save; the recording is incomplete and cannot be recovered</source>
        <translation>Прерванное сохранение; запись неполная, восстановить её нельзя</translation>
    </message>
    <message>
        <source>Not an interrupted save</source>
        <translation>Это не прерванное сохранение</translation>
    </message>
    <message>
        <source>Cannot rename</source>
        <translation>Не удаётся переименовать</translation>
    </message>
</context>
<context>
    <name>RecordExport</name>
    <message>
        <source>Essential data</source>
        <translation>Основные данные</translation>
    </message>
    <message>
        <source>Full data</source>
        <translation>Полные данные</translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Сводка</translation>
    </message>
    <message>
        <source>Nothing to export</source>
        <translation>Нечего экспортировать</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Начало</translation>
    </message>
</context>
<context>
    <name>RecordPreview</name>
    <message>
        <source>Recalculate</source>
        <translation>Пересчитать</translation>
    </message>
    <message>
        <source>Find the blood pressure of the selected records anew</source>
        <translation>Заново определить давление в выбранных записях</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспорт</translation>
    </message>
    <message>
        <source>Export to spreadsheet</source>
        <translation>Экспорт в электронную таблицу</translation>
    </message>
    <message>
        <source>No data</source>
        <translation>Нет данных</translation>
    </message>
    <message>
        <source>The first %1 of %2 selected records are shown</source>
        <translation>Показаны первые %1 из %2 выбранных записей</translation>
    </message>
</context>
<context>
    <name>RecordTableModel</name>
    <message>
        <source>no systolic point found</source>
        <translation>систолическая точка не найдена</translation>
    </message>
    <message>
        <source>no diastolic point found</source>
        <translation>диастолическая точка не найдена</translation>
    </message>
    <message>
        <source>Open the record and place the marker by hand, or measure again.</source>
        <translation>Откройте запись и поставьте маркер вручную или измерьте снова.</translation>
    </message>
</context>
<context>
    <name>SerialNumberDialog</name>
    <message>
        <source>Today</source>
        <translation>Сегодня</translation>
    </message>
    <message>
        <source>Production date</source>
        <translation>Дата изготовления</translation>
    </message>
    <message>
        <source>Write</source>
        <translation>Записать</translation>
    </message>
    <message>
        <source>The serial number could not be written: the unit is not connected.</source>
        <translation>Не удалось записать серийный номер: устройство не подключено.</translation>
    </message>
</context>
<context>
    <name>SessionCatalog</name>
    <message>
        <source>Sessions</source>
        <translation>Сеансы</translation>
    </message>
    <message>
        <source>SD</source>
        <translation>СО</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>Heart rate</source>
        <translation>Пульс</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Прибор</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принято</translation>
    </message>
    <message>
        <source>Flag</source>
        <translation>Отметка</translation>
    </message>
</context>
<context>
    <name>SessionListView</name>
    <message>
        <source>accepted</source>
        <translation>принят</translation>
    </message>
    <message>
        <source>rejected</source>
        <translation>отклонён</translation>
    </message>
    <message>
        <source>by hand</source>
        <translation>вручную</translation>
    </message>
    <message>
        <source>A%1</source>
        <translation>П%1</translation>
    </message>
    <message>
        <source>Filter by rodent</source>
        <translation>Фильтр по животному</translation>
    </message>
    <message>
        <source>Accept</source>
        <translation>Принять</translation>
    </message>
    <message>
        <source>Count the selected cycles, whatever the automatic verdict says</source>
        <translation>Учитывать выбранные циклы независимо от автоматической оценки</translation>
    </message>
    <message>
        <source>Reject</source>
        <translation>Отклонить</translation>
    </message>
    <message>
        <source>Leave the selected cycles out of the statistics</source>
        <translation>Исключить выбранные циклы из статистики</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Автоматически</translation>
    </message>
    <message>
        <source>Give the selected cycles back to the automatic verdict</source>
        <translation>Вернуть выбранным циклам автоматическую оценку</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Цикл</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>HR</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation>Оценка</translation>
    </message>
    <message>
        <source>Print report…</source>
        <translation>Печать отчёта…</translation>
    </message>
    <message>
        <source>The session as a PDF: cycles, verdicts, statistics and traces</source>
        <translation>Сеанс в PDF: циклы, оценки, статистика и кривые</translation>
    </message>
</context>
<context>
    <name>SessionPanel</name>
    <message>
        <source>Acclimation %1 of %2</source>
        <translation>Привыкание %1 из %2</translation>
    </message>
    <message>
        <source>Cycle %1 of %2</source>
        <translation>Цикл %1 из %2</translation>
    </message>
    <message>
        <source>Waiting for a steady pulse…</source>
        <translation>Ожидание устойчивого пульса…</translation>
    </message>
    <message>
        <source>pause before the next cycle</source>
        <translation>пауза перед следующим циклом</translation>
    </message>
    <message>
        <source>Session finished: %1 cycles</source>
        <translation>Сеанс завершён: циклов %1</translation>
    </message>
    <message>
        <source>Unit lost: %1. Finished cycles kept: %2.</source>
        <translation>Прибор потерян: %1. Сохранено завершённых циклов: %2.</translation>
    </message>
    <message>
        <source>accepted</source>
        <translation>принят</translation>
    </message>
    <message>
        <source>A%1</source>
        <translation>П%1</translation>
    </message>
    <message>
        <source>acclimation</source>
        <translation>привыкание</translation>
    </message>
    <message>
        <source>Accepted %1 of %2 · SBP %3 · DBP %4 · MAP %5 mmHg · HR %6 bpm</source>
        <translation>Принято %1 из %2 · САД %3 · ДАД %4 · СрАД %5 мм рт. ст. · ЧСС %6 уд/мин</translation>
    </message>
    <message>
        <source>Session</source>
        <translation>Сеанс</translation>
    </message>
    <message>
        <source>Run a session: acclimation cycles, then measurement cycles, each after a steady pulse. The arrow changes the counts.</source>
        <translation>Провести сеанс: циклы привыкания, затем циклы измерения, каждый после появления устойчивого пульса. Стрелка меняет число циклов.</translation>
    </message>
    <message>
        <source>Acclimation cycles</source>
        <translation>Циклы привыкания</translation>
    </message>
    <message>
        <source>Measurement cycles</source>
        <translation>Циклы измерения</translation>
    </message>
    <message>
        <source>Abort session</source>
        <translation>Прервать сеанс</translation>
    </message>
    <message>
        <source>Stop the session; the finished cycles are kept</source>
        <translation>Остановить сеанс; завершённые циклы сохраняются</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Цикл</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>HR</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Результат</translation>
    </message>
</context>
<context>
    <name>SessionReport</name>
    <message>
        <source>(not named)</source>
        <translation>(без имени)</translation>
    </message>
    <message>
        <source>A%1</source>
        <translation>П%1</translation>
    </message>
    <message>
        <source>Accepted cycles: cuff pressure with the SBP and DBP markers</source>
        <translation>Принятые циклы: давление в манжете с маркерами САД и ДАД</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принято</translation>
    </message>
    <message>
        <source>Acceptance: heart rate %1–%2 bpm, SBP %3–%4 mmHg, DBP %5–%6 mmHg, SBP − DBP at least %7 mmHg, irregular beats at most %8 %</source>
        <translation>Приём цикла: ЧСС %1–%2 уд/мин, САД %3–%4 мм рт. ст., ДАД %5–%6 мм рт. ст., САД − ДАД не меньше %7 мм рт. ст., нерегулярных ударов не больше %8 %</translation>
    </message>
    <message>
        <source>Blood pressure across days</source>
        <translation>Артериальное давление по дням</translation>
    </message>
    <message>
        <source>Blood pressure session</source>
        <translation>Сеанс измерения артериального давления</translation>
    </message>
    <message>
        <source>Cannot write &quot;%1&quot;</source>
        <translation>Не удаётся записать «%1»</translation>
    </message>
    <message>
        <source>Cycle %1: %2/%3 mmHg, %4 bpm</source>
        <translation>Цикл %1: %2/%3 мм рт. ст., %4 уд/мин</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Цикл</translation>
    </message>
    <message>
        <source>Cycles</source>
        <translation>Циклы</translation>
    </message>
    <message>
        <source>Cycles: %1 acclimation, %2 of %3 measurement cycles measured</source>
        <translation>Циклы: привыкание — %1, измерено %2 из %3 циклов измерения</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Date: %1 to %2</source>
        <translation>Дата: с %1 по %2</translation>
    </message>
    <message>
        <source>Flags</source>
        <translation>Отметки</translation>
    </message>
    <message>
        <source>HR</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Hollow points: flagged sessions. Grey marks: sessions without a mean.</source>
        <translation>Полые точки — сеансы с отметкой. Серые метки — сеансы без среднего.</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>Printed %1 by %2</source>
        <translation>Напечатано %1, %2</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Результат</translation>
    </message>
    <message>
        <source>Rodent: %1</source>
        <translation>Животное: %1</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>Session of %1</source>
        <translation>Сеанс: %1</translation>
    </message>
    <message>
        <source>Session</source>
        <translation>Сеанс</translation>
    </message>
    <message>
        <source>Sessions of %1</source>
        <translation>Сеансы: %1</translation>
    </message>
    <message>
        <source>Sessions: %1, from %2 to %3</source>
        <translation>Сеансов: %1, с %2 по %3</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Время</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Прибор</translation>
    </message>
    <message>
        <source>Unit: %1</source>
        <translation>Прибор: %1</translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation>Оценка</translation>
    </message>
</context>
<context>
    <name>SessionRun</name>
    <message>
        <source>Session aborted during cycle %1; that cycle is not kept</source>
        <translation>Сеанс прерван во время цикла %1; этот цикл не сохранён</translation>
    </message>
    <message>
        <source>Session aborted after %1 cycles</source>
        <translation>Сеанс прерван после %1 циклов</translation>
    </message>
    <message>
        <source>The unit was lost; the session is incomplete</source>
        <translation>Связь с прибором потеряна; сеанс не завершён</translation>
    </message>
    <message>
        <source>The unit stopped sending; the session is incomplete</source>
        <translation>Прибор перестал передавать данные; сеанс не завершён</translation>
    </message>
    <message>
        <source>The unit did not start cycle %1; the session is incomplete</source>
        <translation>Прибор не начал цикл %1; сеанс не завершён</translation>
    </message>
    <message>
        <source>Cycle %1 could not be saved: %2. The session stopped; the cycles before it are kept</source>
        <translation>Цикл %1 не удалось сохранить: %2. Сеанс остановлен; предыдущие циклы сохранены</translation>
    </message>
    <message>
        <source>Cycle %1 could not be saved in &quot;%2&quot; (is the disk full?). The session stopped; the cycles before it are kept</source>
        <translation>Цикл %1 не удалось сохранить в «%2» (диск заполнен?). Сеанс остановлен; предыдущие циклы сохранены</translation>
    </message>
    <message>
        <source>The verdict of cycle %1 could not be saved in &quot;%2&quot;. The session stopped; the cycles before it are kept</source>
        <translation>Оценку цикла %1 не удалось сохранить в «%2». Сеанс остановлен; предыдущие циклы сохранены</translation>
    </message>
</context>
<context>
    <name>SessionStatistics</name>
    <message>
        <source>Incomplete: %1 of %2 cycles measured</source>
        <translation>Не завершён: измерено %1 из %2 циклов</translation>
    </message>
    <message>
        <source>Only %1 of %2 cycles accepted (at least %3 needed)</source>
        <translation>Принято лишь %1 из %2 циклов (нужно не меньше %3)</translation>
    </message>
    <message>
        <source>SD of SBP %1 mmHg above %2</source>
        <translation>СО САД %1 мм рт. ст. больше %2</translation>
    </message>
</context>
<context>
    <name>SessionTableModel</name>
    <message>
        <source>Rodent</source>
        <translation>Животное</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Прибор</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принято</translation>
    </message>
    <message>
        <source>SBP</source>
        <translation>САД</translation>
    </message>
    <message>
        <source>DBP</source>
        <translation>ДАД</translation>
    </message>
    <message>
        <source>MAP</source>
        <translation>СрАД</translation>
    </message>
    <message>
        <source>HR</source>
        <translation>ЧСС</translation>
    </message>
    <message>
        <source>Flag</source>
        <translation>Отметка</translation>
    </message>
</context>
<context>
    <name>SettingsFileNotice</name>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read, so Corvida started with its default settings. To keep that file as it is, changes to the settings are not saved in this session. Check who may read the file, then start Corvida again.</source>
        <translation>Файл настроек %1 не удаётся прочитать, поэтому Corvida запущена с настройками по умолчанию. Чтобы этот файл остался как есть, изменения настроек в этом сеансе не сохраняются. Проверьте, кому разрешено читать файл, и запустите Corvida снова.</translation>
    </message>
    <message>
        <source>The settings file %1 was damaged and cannot be replaced. The settings that could be read are in use; changes are not saved in this session.</source>
        <translation>Файл настроек %1 повреждён, и его не удаётся заменить. Используются настройки, которые удалось прочитать; изменения в этом сеансе не сохраняются.</translation>
    </message>
    <message>
        <source>The settings file was damaged. The settings that could be read are kept; the others are back to their defaults. The damaged file was kept as %1.</source>
        <translation>Файл настроек был повреждён. Настройки, которые удалось прочитать, сохранены; остальные возвращены к значениям по умолчанию. Повреждённый файл сохранён как %1.</translation>
    </message>
    <message>
        <source>Settings cannot be saved to %1. Changes made now are lost when Corvida closes. Check that the disk is not full and that the folder may be written to.</source>
        <translation>Не удаётся сохранить настройки в %1. Изменения, сделанные сейчас, будут потеряны при закрытии Corvida. Проверьте, что диск не заполнен и в папку разрешено писать.</translation>
    </message>
</context>
<context>
    <name>SignalViewer</name>
    <message>
        <source>Fit to data: the whole height of the traces in view. Click again for the vertical scale that is set.</source>
        <translation>По данным: вся высота видимых кривых. Нажмите ещё раз, чтобы вернуть заданный вертикальный масштаб.</translation>
    </message>
</context>
<context>
    <name>SuggestionsWidget</name>
    <message>
        <source>Before conducting an experiment:</source>
        <translation>Перед проведением эксперимента:</translation>
    </message>
    <message>
        <source>Heat the rodent properly for at least 10 minutes</source>
        <translation>Хорошо прогрейте животное, не менее 10 минут</translation>
    </message>
    <message>
        <source>Do not heat the rodent more than 20-30 minutes to avoid thermal shock.</source>
        <translation>Не грейте животное дольше 20–30 минут, чтобы избежать теплового удара.</translation>
    </message>
    <message>
        <source>Do not place rodent&apos;s tail on the heating platform.</source>
        <translation>Не кладите хвост животного на нагревательную платформу.</translation>
    </message>
    <message>
        <source>Choose the corresponding cuff size</source>
        <translation>Подберите манжету подходящего размера</translation>
    </message>
    <message>
        <source>Check the cuff&apos;s tidiness</source>
        <translation>Проверьте чистоту и исправность манжеты</translation>
    </message>
    <message>
        <source>Choose the corresponding silicone insert for the sensor</source>
        <translation>Подберите подходящую силиконовую вставку для датчика</translation>
    </message>
    <message>
        <source>Firmly place the cuff and then the sensor onto rodent&apos;s tail</source>
        <translation>Плотно наденьте на хвост животного сначала манжету, затем датчик</translation>
    </message>
    <message>
        <source>&apos;Turn on&apos; the device (without measurement)</source>
        <translation>«Включите» устройство (без измерения)</translation>
    </message>
    <message>
        <source>the PPG signal should be stable, otherwise heat the rodent or check sensor&apos;s position.</source>
        <translation>сигнал ФПГ должен быть стабильным, иначе прогрейте животное или проверьте положение датчика.</translation>
    </message>
    <message>
        <source>Do not start the actual experiment, until the PPG signal is stable in amplitude!</source>
        <translation>Не начинайте эксперимент, пока амплитуда сигнала ФПГ не станет стабильной!</translation>
    </message>
    <message>
        <source>When the PPG signal is stable, press &apos;Measure&apos;</source>
        <translation>Когда сигнал ФПГ стабилен, нажмите «Измерение»</translation>
    </message>
    <message>
        <source>During a common experiment:</source>
        <translation>При обычном эксперименте:</translation>
    </message>
    <message>
        <source>In the beggining the PPG should diminish to zero when rodent&apos;s tail is constricted</source>
        <translation>В начале, когда хвост пережат манжетой, ФПГ должна упасть до нуля</translation>
    </message>
    <message>
        <source>When the pressure lowers down - the PPG amplitude should begin to rise (this is the systolic pressure point)</source>
        <translation>Когда давление снижается, амплитуда ФПГ должна начать расти (это точка систолического давления)</translation>
    </message>
    <message>
        <source>After a while the PPG amplitude should go to a plateau (the inflection point is the diastolic pressure)</source>
        <translation>Через некоторое время амплитуда ФПГ должна выйти на плато (точка перегиба — диастолическое давление)</translation>
    </message>
    <message>
        <source>If the experiment is not as described above - it is invalid. Try:</source>
        <translation>Если эксперимент проходит не так, как описано выше, он недостоверен. Попробуйте:</translation>
    </message>
    <message>
        <source>Heating the rodent if the PPG amplitude is low</source>
        <translation>Прогреть животное, если амплитуда ФПГ мала</translation>
    </message>
    <message>
        <source>Habitate the rodent to the procedure (in case of tail inflicted artifacts)</source>
        <translation>Приучить животное к процедуре (если хвост даёт артефакты движения)</translation>
    </message>
    <message>
        <source>Slightly move the cuff and sensor along the tail if the tail is not being constricted (the bones could protect the tail&apos;s blood vessel)</source>
        <translation>Немного сдвинуть манжету и датчик вдоль хвоста, если хвост не пережимается (кости могут защищать сосуд хвоста)</translation>
    </message>
    <message>
        <source>Hide the tips (the Suggestions button brings them back)</source>
        <translation>Скрыть подсказки (кнопка «Подсказки» вернёт их)</translation>
    </message>
</context>
</TS>
