#include "player/lingo/StageNames.h"

#include <algorithm>
#include <iterator>

#include "player/host/SymbolTable.h"

namespace krl::player {

namespace {

constexpr const char* kOfAStage[] = {
    // Functions and commands.
    "sprite", "go", "play", "puppetSprite", "updateStage", "puppetTempo", "puppetTransition", "puppetPalette",
    "cursor", "window", "open", "close", "forget", "tell", "when", "hilite", "spriteBox", "constrainH",
    "constrainV", "marker", "label", "delay", "pause", "continue", "printFrom", "sendSprite",
    "sendAllSprites", "timeout", "installMenu", "dontPassEvent", "stopEvent", "zoomBox", "ramNeeded", "move",
    "beginRecording", "endRecording", "insertFrame", "deleteFrame", "duplicateFrame", "clearFrame",
    "updateFrame", "menu", "menuItem", "frameReady", "preLoad", "preLoadMember", "preLoadMovie", "unLoad",
    "unLoadMember", "unLoadMovie", "charPosToLoc", "locToCharPos", "linePosToLocV", "locVToLinePos",
    "scrollByLine", "scrollByPage", "mapStageToMember", "mapMemberToStage", "restart", "shutDown",
    "appMinimize", "setScriptList", "newCurve", "camera", "model", "modelUnderLoc", "modelsUnderRay",
    "shader", "makeScriptedSprite", "removeScriptedSprite", "idleLoadDone", "finishIdleLoad",
    "cancelIdleLoad", "point2D", "saveMovie", "framesToHMS", "HMSToFrames",
    // Properties.
    "stage", "activeWindow", "frontWindow", "windowList", "mouseH", "mouseV", "mouseLoc", "mouseChar",
    "mouseItem", "mouseLine", "mouseWord", "mouseCast", "mouseMember", "clickOn", "clickLoc", "lastClick",
    "lastEvent", "lastKey", "lastRoll", "rollOver", "keyDownScript", "keyUpScript", "mouseDownScript",
    "mouseUpScript", "timeoutScript", "timeoutLength", "timeoutKeyDown", "timeoutLapsed", "timeoutMouse",
    "timeoutPlay", "timeoutList", "currentSpriteNum", "frameLabel", "labelList", "markerList", "lastChannel",
    "score", "scoreSelection", "frameScript", "framePalette", "frameSound1", "frameSound2", "frameTransition",
    "frameTempo", "updateLock", "updateMovieEnabled", "selStart", "selEnd", "selection", "stageColor",
    "bgColor", "stageLeft", "stageTop", "stageRight", "stageBottom", "deskTopRectList", "keyboardFocusSprite",
    "centerStage", "fixStageSize", "fullColorPermit", "buttonStyle", "checkBoxType", "checkBoxAccess",
    "alertHook", "cpuHogTicks", "idleHandlerPeriod", "idleLoadMode", "idleLoadPeriod", "idleLoadTag",
    "idleReadChunkSize", "switchColorDepth", "number of menus", "number of menuItems", "number of windows",
    "channelCount", "editShortCutsEnabled", "scriptInstanceList", "digitalVideoTimeScale", "perFrameHook"};

constexpr const char* kOfSound[] = {"sound",
                                    "_sound",
                                    "puppetSound",
                                    "beep",
                                    "soundBusy",
                                    "soundEnabled",
                                    "soundLevel",
                                    "soundDevice",
                                    "soundDeviceList",
                                    "soundKeepDevice",
                                    "soundMixMedia",
                                    "multiSound",
                                    "beepOn",
                                    "playFile",
                                    "isBusy",
                                    "setPlayList",
                                    "queue"};

constexpr const char* kOfANetwork[] = {"getNetText",
                                       "postNetText",
                                       "netDone",
                                       "netError",
                                       "netTextResult",
                                       "netStatus",
                                       "netMIME",
                                       "netLastModDate",
                                       "netAbort",
                                       "gotoNetPage",
                                       "gotoNetMovie",
                                       "preloadNetThing",
                                       "downloadNetThing",
                                       "getStreamStatus",
                                       "tellStreamStatus",
                                       "externalEvent",
                                       "externalParamName",
                                       "externalParamValue",
                                       "externalParamCount",
                                       "browserName",
                                       "cacheSize",
                                       "cacheDocVerify",
                                       "clearCache",
                                       "proxyServer",
                                       "netPresent",
                                       "netThrottleTicks",
                                       "getLatestNetID"};

constexpr const char* kOfPreferences[] = {"getPref", "setPref", "getPrefs", "setPrefs"};

constexpr const char* kOfXtras[] = {"openXlib",    "closeXlib",    "showXlib",
                                    "openResFile", "closeResFile", "showResFile"};

constexpr const char* kOfStageObjects[] = {
    // Of sprites.
    "loc", "locZ", "ink", "blend", "visible", "puppet", "castNum", "trails", "moveableSprite", "editable",
    "constraint", "stretch", "foreColor", "backColor", "skew", "flipH", "flipV", "quad", "tweened",
    "startFrame", "endFrame", "spriteNum", "mostRecentCuePoint", "movieTime", "movieRate", "stretchStyle",
    // Of members with a layout.
    "font", "fontSize", "fontStyle", "alignment", "lineHeight", "charSpacing", "kerning", "wordWrap",
    "boxType", "boxDropShadow", "dropShadow", "border", "margin", "antiAlias", "antiAliasThreshold",
    "autoTab", "scrollTop", "pageHeight", "lineCount", "html", "rtf", "tabs", "topSpacing", "bottomSpacing",
    "firstIndent", "leftIndent", "rightIndent", "hilite", "buttonType", "shapeType", "filled", "lineSize",
    "pattern", "duration", "cuePointNames", "cuePointTimes", "frameRate", "directToStage", "controller",
    "scale", "viewScale", "originMode", "vertexList"};

template <size_t Count>
bool holds(const char* const (&names)[Count], std::string_view wanted) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* name) { return sameText(name, wanted); });
}

}  // namespace

const char* neededBy(std::string_view name) {
    if (holds(kOfAStage, name)) return "a stage";
    if (holds(kOfSound, name)) return "sound";
    if (holds(kOfPreferences, name)) return "preferences";
    if (holds(kOfXtras, name)) return "other xtras";
    return holds(kOfANetwork, name) ? "a network" : nullptr;
}

bool isOfStageObjects(std::string_view name) { return holds(kOfStageObjects, name); }

std::string refusalOf(const char* need, std::string_view what) {
    return std::string("this needs ") + need + ", which krlimage does not have: " + std::string(what);
}

}  // namespace krl::player
