--  The 20 functions as the library sees them, by address once it is loaded. Internal to the binding.
--
--  The types carry the widths: convention C passes arrays, and all that goes out, by address.

private package Corvale.Api is

   type CorvaleInit_Call is access function return Int32 with Convention => C;
   type CorvaleGetInfo_Call is access procedure (Info : out Text_128) with Convention => C;
   type GetInitDllNames_Call is access procedure (Names : out Text_512) with Convention => C;
   type OpenLogFile_Call is access function (FileName : in Text_512) return Int32
     with Convention => C;
   type CloseLogFile_Call is access procedure with Convention => C;
   type LogMessage_Call is access procedure (Message : in Text_128) with Convention => C;
   type GetLastErrMsg_Call is access procedure (Message : out Text_128) with Convention => C;
   type GetLastInfoMsg_Call is access procedure (Message : out Text_128) with Convention => C;
   type GetDupKeyMode_Call is access function return Int32 with Convention => C;
   type SetDupKeyMode_Call is access function (Mode : in Int32) return Int32 with Convention => C;
   type GetAllKeyMode_Call is access function return Int32 with Convention => C;
   type SetAllKeyMode_Call is access function (Mode : in Int32) return Int32 with Convention => C;
   type ResetAllKeyMode_Call is access procedure with Convention => C;
   type GetElsetKeyMode_Call is access function return Int32 with Convention => C;
   type SetElsetKeyMode_Call is access function (Mode : in Int32) return Int32 with Convention => C;
   type CorvaleLoadFile_Call is access function (FileName : in Text_512) return Int32
     with Convention => C;
   type GetMOICData_Call is access procedure (Count : in Int32; Values : out Real64_Array)
     with Convention => C;
   type TestInterface_Call is access procedure
     (CIn   : in Character; COut   : out Character;
      IIn   : in Int32;     IOut   : out Int32;
      LIn   : in Int64;     LOut   : out Int64;
      DIn   : in Real64;    DOut   : out Real64;
      StrIn : in Text_512;  StrOut : out Text_512;
      I3In  : in Int32_3;   I3Out  : out Int32_3;
      L3In  : in Int64_3;   L3Out  : out Int64_3;
      D3In  : in Real64_3;  D3Out  : out Real64_3;
      I6In  : in Int32_6;   I6Out  : out Int32_6;
      L6In  : in Int64_6;   L6Out  : out Int64_6;
      D6In  : in Real64_6;  D6Out  : out Real64_6)
     with Convention => C;
   type TestInterface2_Call is access procedure
     (Ch  : in out Character;
      I   : in out Int32;
      L   : in out Int64;
      D   : in out Real64;
      Str : in out Text_512;
      I3  : in out Int32_3;
      L3  : in out Int64_3;
      D3  : in out Real64_3;
      I6  : in out Int32_6;
      L6  : in out Int64_6;
      D6  : in out Real64_6)
     with Convention => C;
   type TestInterface3_Call is access procedure
     (I3In : in Int32_3; I3Out : out Int32_3; I6In : in Int32_6; I6Out : out Int32_6)
     with Convention => C;

   CorvaleInit      : CorvaleInit_Call;
   CorvaleGetInfo   : CorvaleGetInfo_Call;
   GetInitDllNames  : GetInitDllNames_Call;
   OpenLogFile      : OpenLogFile_Call;
   CloseLogFile     : CloseLogFile_Call;
   LogMessage       : LogMessage_Call;
   GetLastErrMsg    : GetLastErrMsg_Call;
   GetLastInfoMsg   : GetLastInfoMsg_Call;
   GetDupKeyMode    : GetDupKeyMode_Call;
   SetDupKeyMode    : SetDupKeyMode_Call;
   GetAllKeyMode    : GetAllKeyMode_Call;
   SetAllKeyMode    : SetAllKeyMode_Call;
   ResetAllKeyMode  : ResetAllKeyMode_Call;
   GetElsetKeyMode  : GetElsetKeyMode_Call;
   SetElsetKeyMode  : SetElsetKeyMode_Call;
   CorvaleLoadFile  : CorvaleLoadFile_Call;
   GetMOICData      : GetMOICData_Call;
   TestInterface    : TestInterface_Call;
   TestInterface2   : TestInterface2_Call;
   TestInterface3   : TestInterface3_Call;
   --  Null until Load has found them all.

   procedure Load (Library : String);
   --  Opens the library with local scope, for good, and finds every function. Raises Load_Error.

end Corvale.Api;
