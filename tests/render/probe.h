#pragma once

/// Behaviours of the probe module's shader: the first number of its settings.
enum ProbeBehaviour {
    kPaint,         ///< the four numbers as colour and transparency
    kDescribe,      ///< tells the record's fields, changes nothing
    kMeasureLight,  ///< colours by the light here and, by the numbers, elsewhere
    kPassOn,        ///< traces onward, as often as the first number says
    kLook,          ///< tells what lies along the numbers, changes nothing
    kGreet,         ///< tells once when it has read its settings
    kScribble,      ///< overwrites the whole record
    kJudge,   ///< red: faces light that travels along the numbers and gets none; green: gets it
    kRefuse,  ///< refuses these settings
    kSpoil    ///< returns values that are none, of the kind of the first number
};
