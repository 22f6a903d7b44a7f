// Numbers of the string table that the coordsys room uses. A run of texts that a number is counted
// into is marked, and the count is checked where it is done.
#pragma once

namespace tarvex {

inline constexpr int kTextCoordinateSystem = 141;  ///< a title

// Loading and packing grids
inline constexpr int kTextLoadingGrid = 1193;
inline constexpr int kTextHungarianGridsMissing = 1703;
inline constexpr int kTextPackingGrid = 4170;

// Definitions and closed libraries
inline constexpr int kTextUnknownProjection = 2205;      ///< before its name
inline constexpr int kTextProjectionLeftAsItWas = 2206;  ///< behind its name
inline constexpr int kTextLibraryNotLoaded = 2207;
inline constexpr int kTextLibraryEntryMissing = 2208;
inline constexpr int kTextFirstDefinitionIssue =
    4000;  ///< run: in the order of DefinitionIssueKind
inline constexpr int kTextLastDefinitionIssue = 4017;

// Why a system cannot be used
inline constexpr int kTextFirstProjectionFault = 2210;  ///< run: in the order of ProjectionFault
inline constexpr int kTextLastProjectionFault = 2220;
inline constexpr int kTextNoShiftKnown = 2221;

// Results of a conversion
inline constexpr int kTextConverted = 2230;
inline constexpr int kTextConvertedInPart = 2231;
inline constexpr int kTextProjectionLibraryMissing = 2232;
inline constexpr int kTextNotANumber = 2233;
inline constexpr int kTextNoSystem = 2234;
inline constexpr int kTextSystemNotAvailable = 2235;
inline constexpr int kTextOutsideProjection = 2236;
inline constexpr int kTextShiftNotAvailable = 2237;
inline constexpr int kTextStepRefused = 2238;
inline constexpr int kTextHeightNotSettled = 2239;
inline constexpr int kTextNationalGridLeftOut = 2240;
inline constexpr int kTextNationalGridNeeded = 2241;

// The catalogue
inline constexpr int kTextCatalogueChanged = 2270;
inline constexpr int kTextNoSuchSystem = 2271;
inline constexpr int kTextSystemExists = 2272;
inline constexpr int kTextNotASystemName = 2273;
inline constexpr int kTextNotASystemDefinition = 2274;
inline constexpr int kTextCatalogueNotChanged = 2275;
inline constexpr int kTextCatalogueNotRead = 2276;

// Grid files
inline constexpr int kTextGridFileMissing = 4100;
inline constexpr int kTextGridFileUnreadable = 4101;
inline constexpr int kTextNotThisGridFormat = 4102;
inline constexpr int kTextGridCutShort = 4103;
inline constexpr int kTextGridTooLong = 4104;
inline constexpr int kTextImpossibleGridSize = 4105;
inline constexpr int kTextBadGridValue = 4106;
inline constexpr int kTextGridPartsDiffer = 4107;

// Datum shifts
inline constexpr int kTextNotBetweenNad27AndNad83 = 2248;
inline constexpr int kTextShiftLibraryMissing = 4150;
inline constexpr int kTextOutsideGrid = 4151;
inline constexpr int kTextNoGridValue = 4152;
inline constexpr int kTextShiftNotMade = 4153;
inline constexpr int kTextTakenAsTheyAre = 4154;
inline constexpr int kTextSevenParameters = 4155;
inline constexpr int kTextNadconGrids = 4156;
inline constexpr int kTextNtv2Grid = 4157;
inline constexpr int kTextTranslationGrid = 4158;
inline constexpr int kTextUnknownShift = 4163;
inline constexpr int kTextDefinitionWithoutShift = 4164;
inline constexpr int kTextBadShiftParameters = 4165;
inline constexpr int kTextProjectionShiftsItself = 4166;
inline constexpr int kTextNoNadconGrids = 4167;
inline constexpr int kTextNoneFound = 4168;
inline constexpr int kTextGridOfAnotherCountry = 4178;
inline constexpr int kTextNothingToShift = 4179;

// The geoid and the corrections of the plane
inline constexpr int kTextOutsideGeoid = 4160;
inline constexpr int kTextGeoidMissing = 4161;
inline constexpr int kTextCorrectionGridMissing = 4162;
/// Run: and 1 for east, 2 for north, 4 for height, of what has no value.
inline constexpr int kTextCorrectionInPart = 4170;
inline constexpr int kTextCorrectionNotClosing = 4177;

// The localization and its file
inline constexpr int kTextNotALocalizationFile = 4110;
inline constexpr int kTextPointValueMissing = 4111;
inline constexpr int kTextPointValueUnreadable = 4112;
inline constexpr int kTextPointValueOutOfRange = 4113;
inline constexpr int kTextNoLocalizationRecord = 4114;
inline constexpr int kTextLocalizationUnreadable = 4115;
inline constexpr int kTextHorizontalFit = 4120;
inline constexpr int kTextVerticalFit = 4121;
inline constexpr int kTextNoHorizontalCheck = 4130;
inline constexpr int kTextControlOnALine = 4131;
inline constexpr int kTextControlTooClose = 4132;
inline constexpr int kTextFarScale = 4133;
inline constexpr int kTextLikelyBlunder = 4134;
inline constexpr int kTextOutsideControl = 4135;
inline constexpr int kTextNoVerticalCheck = 4136;
inline constexpr int kTextPlaneNeedsThreePoints = 4137;
inline constexpr int kTextPlanePointsOnALine = 4138;
inline constexpr int kTextPlaneTooSteep = 4139;
inline constexpr int kTextLargeHorizontalResidual = 4140;
inline constexpr int kTextFarScaleOnGround = 4141;
inline constexpr int kTextLargeVerticalResidual = 4142;

}  // namespace tarvex
