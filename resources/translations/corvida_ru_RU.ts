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
        <source>ShowDisconnectedDevices</source>
        <translation>Показывать отключённые устройства</translation>
    </message>
    <message>
        <source>SaveRawData</source>
        <translation>Сохранять сырые данные</translation>
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
</context>
<context>
    <name>Generic</name>
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
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>New experiment in database</source>
        <translation>Новый эксперимент в базе</translation>
    </message>
</context>
<context>
    <name>PageAboutApp</name>
    <message>
        <source>About</source>
        <translation>О программе</translation>
    </message>
</context>
<context>
    <name>PageDatabase</name>
    <message>
        <source>Records</source>
        <translation>Записи</translation>
    </message>
    <message>
        <source>Viewing, recalculating, importing and exporting records are not available in this version yet. The recordings in the records folder are listed below.</source>
        <translation>Просмотр, пересчёт, импорт и экспорт записей в этой версии пока недоступны. Ниже перечислены записи из папки записей.</translation>
    </message>
    <message>
        <source>No data</source>
        <translation>Нет данных</translation>
    </message>
    <message>
        <source>Reload records</source>
        <translation>Обновить список записей</translation>
    </message>
    <message>
        <source>Open in explorer</source>
        <translation>Открыть в проводнике</translation>
    </message>
</context>
<context>
    <name>PageExperimentMulti</name>
    <message>
        <source>Measuring units</source>
        <translation>Измерительные устройства</translation>
    </message>
    <message>
        <source>No devices found</source>
        <translation>Устройства не найдены</translation>
    </message>
    <message>
        <source>Experiment</source>
        <translation>Эксперимент</translation>
    </message>
    <message>
        <source>Simulated unit</source>
        <translation>Виртуальное устройство</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Устройство</translation>
    </message>
    <message>
        <source>serial number</source>
        <translation>серийный номер</translation>
    </message>
    <message>
        <source>Live measurement is not available in this version yet. The units the program finds are listed below; they cannot be turned on or measured from this window.</source>
        <translation>Измерение в этой версии пока недоступно. Найденные устройства перечислены ниже; включить их и провести измерение из этого окна нельзя.</translation>
    </message>
</context>
<context>
    <name>PageSettings</name>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
</context>
</TS>
