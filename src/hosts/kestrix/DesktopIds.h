// The numbers of the desktop's texts. The placeholders of each stand in tests/data/text_ids.tsv.
#pragma once

namespace zr::desktop {

// Menus. & stands before the letter that opens an entry, each once a menu.
inline constexpr unsigned kTextMenuFile = 40000;
inline constexpr unsigned kTextFileOpen = 40001;
inline constexpr unsigned kTextFileReload = 40002;
inline constexpr unsigned kTextFileSave = 40003;
inline constexpr unsigned kTextFileSaveAs = 40004;
inline constexpr unsigned kTextFilePageSetup = 40005;
inline constexpr unsigned kTextFileQuit = 40006;
inline constexpr unsigned kTextMenuView = 40010;
inline constexpr unsigned kTextViewLanguage = 40011;
inline constexpr unsigned kTextLanguageSystem = 40012;
inline constexpr unsigned kTextLanguageEnglish = 40013;
inline constexpr unsigned kTextLanguageGerman = 40014;
inline constexpr unsigned kTextLanguageSpanish = 40015;
inline constexpr unsigned kTextViewColours = 40016;
inline constexpr unsigned kTextColoursLight = 40017;
inline constexpr unsigned kTextColoursDark = 40018;
inline constexpr unsigned kTextColoursSystem = 40019;
inline constexpr unsigned kTextViewWarnings = 40020;
inline constexpr unsigned kTextViewToolbar = 40021;
inline constexpr unsigned kTextViewStatusBar = 40022;
inline constexpr unsigned kTextMenuHelp = 40030;
inline constexpr unsigned kTextHelpKeys = 40031;
inline constexpr unsigned kTextHelpAbout = 40032;

// Tips of the toolbar.
inline constexpr unsigned kTextTipOpen = 40040;
inline constexpr unsigned kTextTipReload = 40041;
inline constexpr unsigned kTextTipSave = 40042;
inline constexpr unsigned kTextTipPageSetup = 40043;
inline constexpr unsigned kTextTipLanguage = 40044;
inline constexpr unsigned kTextTipColours = 40045;
inline constexpr unsigned kTextTipWarnings = 40046;
inline constexpr unsigned kTextTipAbout = 40047;
inline constexpr unsigned kTextTipDevice = 40048;
inline constexpr unsigned kTextTipLimits = 40049;

// States of a device.
inline constexpr unsigned kTextStateOnLine = 40060;
inline constexpr unsigned kTextStateSilent = 40061;
inline constexpr unsigned kTextStateAlarm = 40062;
inline constexpr unsigned kTextStateUnasked = 40063;
inline constexpr unsigned kTextStateUnpolled = 40064;

// Tree and pages.
inline constexpr unsigned kTextTreeDevices = 40070;
inline constexpr unsigned kTextTreeOtherDevices = 40071;
inline constexpr unsigned kTextPageValues = 40072;
inline constexpr unsigned kTextPageGroup = 40073;
inline constexpr unsigned kTextPageDevice = 40074;
inline constexpr unsigned kTextPageNothingSelected = 40075;
inline constexpr unsigned kTextPageNoDevices = 40076;
inline constexpr unsigned kTextPageEmptyGroup = 40077;
inline constexpr unsigned kTextPageNoVariables = 40078;
inline constexpr unsigned kTextPageUnknownType = 40079;
inline constexpr unsigned kTextSectionVoltages = 40080;
inline constexpr unsigned kTextSectionCurrents = 40081;
inline constexpr unsigned kTextSectionPowers = 40082;
inline constexpr unsigned kTextSectionPowerFactors = 40083;
inline constexpr unsigned kTextSectionEnergies = 40084;
inline constexpr unsigned kTextSectionInputs = 40085;
inline constexpr unsigned kTextSectionOutputs = 40086;
inline constexpr unsigned kTextSectionOther = 40087;
inline constexpr unsigned kTextHeadingVariable = 40088;
inline constexpr unsigned kTextHeadingValue = 40089;
inline constexpr unsigned kTextHeadingUnit = 40090;
inline constexpr unsigned kTextHeadingLow = 40091;
inline constexpr unsigned kTextHeadingHigh = 40092;
inline constexpr unsigned kTextHeadingDevice = 40093;
inline constexpr unsigned kTextHeadingState = 40094;
inline constexpr unsigned kTextHeadingDescription = 40095;

// A selected value.
inline constexpr unsigned kTextMenuCopyLink = 40100;
inline constexpr unsigned kTextLinkSpreadsheet = 40101;
inline constexpr unsigned kTextLinkFunction = 40102;
inline constexpr unsigned kTextLinkReference = 40103;
inline constexpr unsigned kTextCopyValue = 40104;
inline constexpr unsigned kTextHistoryMark = 40105;
inline constexpr unsigned kTextHistoryForget = 40106;
inline constexpr unsigned kTextCopied = 40107;

// Status bar.
inline constexpr unsigned kTextStatusDevices = 40110;
inline constexpr unsigned kTextStatusOneDevice = 40111;
inline constexpr unsigned kTextStatusWarnings = 40112;
inline constexpr unsigned kTextStatusOneWarning = 40113;
inline constexpr unsigned kTextStatusNoWarnings = 40114;
inline constexpr unsigned kTextStatusUnpolled = 40115;
inline constexpr unsigned kTextStatusReloaded = 40116;
inline constexpr unsigned kTextStatusSaved = 40117;

// Documents and messages.
inline constexpr unsigned kTextWindowTitle = 40130;
inline constexpr unsigned kTextTitleOpen = 40131;
inline constexpr unsigned kTextTitleSave = 40132;
inline constexpr unsigned kTextFilterDocuments = 40133;
inline constexpr unsigned kTextFilterAllFiles = 40134;
inline constexpr unsigned kTextErrorOpen = 40135;
inline constexpr unsigned kTextErrorRead = 40136;
inline constexpr unsigned kTextErrorSave = 40137;
inline constexpr unsigned kTextErrorLanguage = 40138;
inline constexpr unsigned kTextErrorClipboard = 40139;
inline constexpr unsigned kTextAskSave = 40140;
inline constexpr unsigned kTextAskReload = 40141;
inline constexpr unsigned kMessageSupervised = 40142;

// What was added to the page, the printing and the status bar.
inline constexpr unsigned kTextSectionCounters = 40170;
inline constexpr unsigned kTextSectionHarmonics = 40171;
inline constexpr unsigned kTextPaperSize = 40172;
inline constexpr unsigned kTextOrientation = 40173;
inline constexpr unsigned kTextPortrait = 40174;
inline constexpr unsigned kTextLandscape = 40175;
inline constexpr unsigned kTextMargin = 40176;
inline constexpr unsigned kTextTitlePageSetup = 40177;
inline constexpr unsigned kTextFilePrint = 40178;
inline constexpr unsigned kTextPagerRange = 40179;
inline constexpr unsigned kTextPagerPrevious = 40180;
inline constexpr unsigned kTextPagerNext = 40181;
inline constexpr unsigned kTextRenameGroup = 40182;
inline constexpr unsigned kTextStatusPublished = 40183;
inline constexpr unsigned kTextStatusNotPublished = 40184;
inline constexpr unsigned kTextStatusValues = 40185;
inline constexpr unsigned kTextSelectValue = 40186;
inline constexpr unsigned kTextErrorPrint = 40187;
inline constexpr unsigned kTextReadAgain = 40188;

// Windows on logged data.
inline constexpr unsigned kTextLoggedMenu = 40200;
inline constexpr unsigned kTextLoggedTitle = 40201;
inline constexpr unsigned kTextLoggedRecords = 40202;
inline constexpr unsigned kTextLoggedOneRecord = 40203;
inline constexpr unsigned kTextLoggedWindow = 40204;
inline constexpr unsigned kTextLoggedEveryRecord = 40205;
inline constexpr unsigned kTextLoggedReduced = 40206;
inline constexpr unsigned kTextLoggedStopped = 40207;
inline constexpr unsigned kTextLoggedCopy = 40208;
inline constexpr unsigned kTextLoggedPreview = 40209;
inline constexpr unsigned kTextLoggedExport = 40210;
inline constexpr unsigned kTextLoggedCsv = 40211;
inline constexpr unsigned kTextLoggedXlsx = 40212;
inline constexpr unsigned kTextLoggedPdf = 40213;
inline constexpr unsigned kTextLoggedNotExported = 40214;
inline constexpr unsigned kTextLoggedExported = 40215;
inline constexpr unsigned kTextLoggedOffset = 40216;
inline constexpr unsigned kTextLoggedNoPdf = 40217;
inline constexpr unsigned kTextLoggedNone = 40218;
inline constexpr unsigned kTextTipLoggedData = 40219;
inline constexpr unsigned kTextLoggedFailed = 40220;
inline constexpr unsigned kTextLoggedDamaged = 40221;
inline constexpr unsigned kTextLoggedNoValues = 40222;
inline constexpr unsigned kTextLoggedVanished = 40223;
inline constexpr unsigned kTextLoggedMore = 40224;
inline constexpr unsigned kMessageLoadFailed = 40225;
inline constexpr unsigned kMessageArrangementNotKept = 40226;
inline constexpr unsigned kMessageArrangementLost = 40227;
inline constexpr unsigned kTextLoggedNoPages = 40228;
inline constexpr unsigned kTextLoggedNoKind = 40229;
inline constexpr unsigned kTextLoggedNoFolder = 40230;
inline constexpr unsigned kTextLoggedExporting = 40231;
inline constexpr unsigned kTextLoggedReplace = 40232;

// Table or graph.
inline constexpr unsigned kTextLoggedGraph = 40260;
inline constexpr unsigned kTextLoggedTable = 40261;
inline constexpr unsigned kTextLoggedZoomed = 40262;
inline constexpr unsigned kTextLoggedNotCopied = 40263;

// The page of logged data.
inline constexpr unsigned kTextLoggedData = 40320;
inline constexpr unsigned kTextLoggedRecording = 40321;
inline constexpr unsigned kTextLoggedStarting = 40322;
inline constexpr unsigned kTextLoggedNothing = 40323;
inline constexpr unsigned kTextLoggedByOther = 40324;
inline constexpr unsigned kTextLoggedStoreAway = 40325;
inline constexpr unsigned kTextLoggedResending = 40326;
inline constexpr unsigned kTextLoggedNoRoom = 40327;
inline constexpr unsigned kTextLoggedStore = 40328;
inline constexpr unsigned kTextLoggedDataSets = 40329;
inline constexpr unsigned kTextLoggedDataSet = 40330;
inline constexpr unsigned kTextLoggedPeriod = 40331;
inline constexpr unsigned kTextLoggedKept = 40332;
inline constexpr unsigned kTextLoggedVariables = 40333;
inline constexpr unsigned kTextLoggedRecorded = 40334;
inline constexpr unsigned kTextLoggedNotRecorded = 40335;
inline constexpr unsigned kTextLoggedLast = 40336;
inline constexpr unsigned kTextLoggedWaiting = 40337;
inline constexpr unsigned kTextLoggedOnDisk = 40338;
inline constexpr unsigned kTextLoggedSamples = 40339;
inline constexpr unsigned kTextLoggedOf = 40340;
inline constexpr unsigned kTextLoggedForEver = 40341;
inline constexpr unsigned kTextLoggedNoFile = 40342;
inline constexpr unsigned kTextLoggedSeconds = 40343;
inline constexpr unsigned kTextLoggedMinutes = 40344;
inline constexpr unsigned kTextLoggedHours = 40345;
inline constexpr unsigned kTextLoggedDays = 40346;
inline constexpr unsigned kTextLoggedReasons = 40347;
inline constexpr unsigned kTextLoggedYet = 40348;

// Help.
inline constexpr unsigned kTextTitleAbout = 40160;
inline constexpr unsigned kTextAbout = 40161;
inline constexpr unsigned kTextTitleKeys = 40162;
inline constexpr unsigned kTextKeys = 40163;

}  // namespace zr::desktop
