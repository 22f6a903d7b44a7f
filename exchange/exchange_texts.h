// Numbers of the string table that the exchange room uses.
#pragma once

namespace tarvex {

// Why a LandXML document is refused
inline constexpr int kTextLandXmlProblem = 5100;  ///< the line, and one of those below
inline constexpr int kTextNoXml = 5101;
inline constexpr int kTextXmlUnreadable = 5102;
inline constexpr int kTextNoLandXml = 5103;
inline constexpr int kTextNoAlignment = 5104;
inline constexpr int kTextNoAlignmentWithGeometry = 5105;
inline constexpr int kTextSeveralAlignments = 5106;
inline constexpr int kTextNoSuchAlignmentNorOther = 5107;
inline constexpr int kTextNoSuchAlignment = 5108;
inline constexpr int kTextAlignmentWithoutProfile = 5109;
inline constexpr int kTextNoUnitOfAJob = 5110;
inline constexpr int kTextElementNotHeld = 5111;
inline constexpr int kTextTooManyElements = 5112;
inline constexpr int kTextRotationMissing = 5113;
inline constexpr int kTextTransitionNotHeld = 5114;
inline constexpr int kTextElementsApart = 5115;
inline constexpr int kTextDecreasingStations = 5116;
inline constexpr int kTextTooManyEquations = 5117;
inline constexpr int kTextAttributeUnusable = 5118;
inline constexpr int kTextPointUnusable = 5119;
inline constexpr int kTextStationAndElevationUnusable = 5120;
inline constexpr int kTextProfileFalls = 5121;
inline constexpr int kTextVerticalCurvesOverlap = 5122;
inline constexpr int kTextVerticalCurveUnusable = 5123;

// What was assumed or left out
inline constexpr int kTextNoUnitNamed = 5130;
inline constexpr int kTextFootIsInternational = 5131;
inline constexpr int kTextCurveDisagrees = 5132;
inline constexpr int kTextStartDisagrees = 5133;
inline constexpr int kTextNoStartStation = 5134;
inline constexpr int kTextStartStationNoNumber = 5135;
inline constexpr int kTextBackStationDisagrees = 5136;
inline constexpr int kTextGroundLeftOut = 5137;
inline constexpr int kTextFurtherProfileLeftOut = 5138;
inline constexpr int kTextShortProfileLeftOut = 5139;

// In the picture of a section
inline constexpr int kTextOneScale = 5140;
inline constexpr int kTextHeightsStretched = 5141;
inline constexpr int kTextCut = 5142;
inline constexpr int kTextFill = 5143;

}  // namespace tarvex
